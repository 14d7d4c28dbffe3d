import QtQuick
import QuillFern.Theme

// The category badge of a game.
Rectangle {
    id: root
    property string text
    property color tint: Theme.gold

    implicitWidth: label.implicitWidth + 12
    implicitHeight: 16
    radius: height / 2
    color: Qt.rgba(tint.r, tint.g, tint.b, tint.a * 0.18)
    border.width: 0.5
    border.color: Qt.rgba(tint.r, tint.g, tint.b, tint.a * 0.45)

    ThemeText {
        id: label
        role: Theme.Micro
        anchors.centerIn: parent
        text: root.text
        color: root.tint
        font.weight: Font.ExtraBold
        font.letterSpacing: 0.4
    }
}
