import QtQuick
import QtQuick.Shapes
import QuillFern.Theme

// A small accent chevron pointing right.
Shape {
    id: root
    property color tint: Theme.gold
    property real lineWidth: 2
    implicitWidth: 8
    implicitHeight: 12
    ShapePath {
        strokeColor: root.tint
        strokeWidth: root.lineWidth
        fillColor: "transparent"
        capStyle: ShapePath.RoundCap
        joinStyle: ShapePath.RoundJoin
        startX: root.lineWidth; startY: root.lineWidth
        PathLine { x: root.width - root.lineWidth; y: root.height / 2 }
        PathLine { x: root.lineWidth; y: root.height - root.lineWidth }
    }
}
