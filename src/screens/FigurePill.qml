import QtQuick
import QuillFern.Theme

// A figure of the timeline's "Your game" card: the value above its label on a faint tile. An
// objective shows both sides' counts instead of one value.
Rectangle {
    id: root
    required property string label
    property string value
    property color valueColor: Theme.text
    property bool isObjective: false
    property string mine
    property string enemy

    implicitHeight: 58
    radius: 10
    color: Qt.rgba(1, 1, 1, 0.04)

    Column {
        anchors.left: parent.left
        anchors.leftMargin: 12
        anchors.verticalCenter: parent.verticalCenter
        spacing: 3
        ThemeText {
            visible: !root.isObjective
            role: Theme.Headline
            text: root.value
            color: root.valueColor
            font.weight: Font.Bold
        }
        Row {
            visible: root.isObjective
            spacing: 3
            ThemeText { role: Theme.Headline; text: root.mine; color: Theme.win; font.weight: Font.Bold }
            ThemeText { role: Theme.Headline; text: "–"; color: Theme.textFaint; font.weight: Font.Bold }
            ThemeText { role: Theme.Headline; text: root.enemy; color: Theme.loss; font.weight: Font.Bold }
        }
        ThemeText {
            role: Theme.Micro
            text: root.label
            color: Theme.textFaint
            font.weight: Font.Bold
            font.letterSpacing: 0.4
        }
    }
}
