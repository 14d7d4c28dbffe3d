import QtQuick
import QuillFern.Theme

// The glass surface of cards: a translucent dark fill, a soft top highlight and a fine outline.
Rectangle {
    id: root
    property real cornerRadius: Theme.cardRadius
    property color tint: "transparent"

    radius: cornerRadius
    color: Qt.rgba(Theme.glassDark.r, Theme.glassDark.g, Theme.glassDark.b, 0.55)
    border.width: 1
    border.color: Qt.rgba(1, 1, 1, 0.11)

    Rectangle {
        anchors.fill: parent
        anchors.margins: 1
        radius: Math.max(0, root.cornerRadius - 1)
        gradient: Gradient {
            GradientStop { position: 0; color: Qt.rgba(1, 1, 1, 0.10 + 0.03) }
            GradientStop { position: 0.5; color: Qt.rgba(1, 1, 1, 0.03) }
            GradientStop { position: 1; color: Qt.rgba(1, 1, 1, 0.03) }
        }
    }
    Rectangle {
        anchors.fill: parent
        radius: root.cornerRadius
        color: root.tint
        opacity: 0.14
        visible: root.tint.a > 0
    }
    // The outline is brighter at the top, as if lit from above.
    Rectangle {
        anchors { left: parent.left; right: parent.right; top: parent.top }
        anchors.leftMargin: root.cornerRadius
        anchors.rightMargin: root.cornerRadius
        height: 1
        color: Qt.rgba(1, 1, 1, 0.2)
    }
}
