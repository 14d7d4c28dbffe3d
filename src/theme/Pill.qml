import QtQuick
import QuillFern.Theme

// A small capsule label in one colour.
Rectangle {
    id: root
    property string text
    property color tint: Theme.gold

    implicitWidth: label.implicitWidth + 16
    implicitHeight: label.implicitHeight + 6
    radius: height / 2
    color: Qt.rgba(tint.r, tint.g, tint.b, 0.16)

    ThemeText {
        id: label
        role: Theme.Caption
        anchors.centerIn: parent
        text: root.text
        color: root.tint
        font.weight: Font.DemiBold
    }
}
