import QtQuick
import QtQuick.Controls.Basic
import QuillFern.Theme

// A Riot ID field with its magnifying glass and a gold button: the look-up bar of the friends and
// search screens. Submitting the field runs the look-up even while the button is disabled.
Item {
    id: root
    required property string placeholder
    required property string buttonText
    required property bool canSubmit
    property alias text: field.text
    signal submitted()

    implicitHeight: 42

    Rectangle {
        id: box
        anchors.left: parent.left
        anchors.right: button.left
        anchors.rightMargin: Theme.controlSpacing
        height: parent.height
        radius: Theme.buttonRadius
        color: Qt.rgba(1, 1, 1, 0.05)
        border.width: 1
        border.color: field.activeFocus ? Qt.rgba(Theme.gold.r, Theme.gold.g, Theme.gold.b, 0.6) : Qt.rgba(1, 1, 1, 0.1)

        Symbol {
            id: glass
            anchors.left: parent.left
            anchors.leftMargin: 14
            anchors.verticalCenter: parent.verticalCenter
            name: "magnifyingglass"
            size: 17
            color: Theme.textDim
        }
        TextField {
            id: field
            anchors.left: glass.right
            anchors.leftMargin: 8
            anchors.right: parent.right
            anchors.rightMargin: 10
            anchors.verticalCenter: parent.verticalCenter
            placeholderText: root.placeholder
            placeholderTextColor: Theme.textDim
            color: Theme.text
            selectionColor: Theme.gold
            font.family: Theme.fontFamily
            font.pixelSize: Theme.fontSize(Theme.Callout)
            background: null
            onAccepted: root.submitted()
        }
    }

    Rectangle {
        id: button
        anchors.right: parent.right
        width: Math.max(92, label.implicitWidth + 36)
        height: parent.height
        radius: Theme.buttonRadius
        color: Theme.gold
        opacity: root.canSubmit ? 1.0 : 0.45
        ThemeText {
            id: label
            role: Theme.Callout
            anchors.centerIn: parent
            text: root.buttonText
            color: Theme.textOnGold
            font.weight: Font.Bold
        }
        MouseArea {
            anchors.fill: parent
            enabled: root.canSubmit
            cursorShape: enabled ? Qt.PointingHandCursor : Qt.ArrowCursor
            onClicked: root.submitted()
        }
    }
}
