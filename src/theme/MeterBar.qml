import QtQuick
import QuillFern.Theme

// A capsule meter filled to pct percent.
Rectangle {
    id: root
    property real pct: 0
    property color tint: Theme.gold
    property real barHeight: 6

    implicitHeight: barHeight
    radius: height / 2
    color: Qt.rgba(1, 1, 1, 0.08)

    Rectangle {
        height: parent.height
        radius: height / 2
        width: parent.width * Math.min(Math.max(root.pct / 100, 0), 1)
        color: root.tint
        visible: width > 0
    }
}
