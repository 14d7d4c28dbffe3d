import QtQuick
import QtQuick.Shapes
import QuillFern.Theme

// A player without a known profile icon: their initials on a rounded tile in two colours that
// follow the player, running from the top-leading to the bottom-trailing corner.
Item {
    id: root
    required property string initials
    required property var colors // two colours, light then dark
    property real size: 38
    readonly property real corner: size * 0.28

    implicitWidth: size
    implicitHeight: size

    // A shape rather than a gradient effect: it draws the same on every scene graph backend.
    Shape {
        anchors.fill: parent
        layer.enabled: true
        layer.samples: 4
        ShapePath {
            strokeColor: Qt.rgba(1, 1, 1, 0.14)
            strokeWidth: 1
            fillGradient: LinearGradient {
                x1: 0; y1: 0; x2: root.size; y2: root.size
                GradientStop { position: 0; color: root.colors[0] }
                GradientStop { position: 1; color: root.colors[1] }
            }
            startX: root.corner
            startY: 0.5
            PathLine { x: root.size - root.corner; y: 0.5 }
            PathArc { x: root.size - 0.5; y: root.corner; radiusX: root.corner - 0.5; radiusY: root.corner - 0.5 }
            PathLine { x: root.size - 0.5; y: root.size - root.corner }
            PathArc { x: root.size - root.corner; y: root.size - 0.5; radiusX: root.corner - 0.5; radiusY: root.corner - 0.5 }
            PathLine { x: root.corner; y: root.size - 0.5 }
            PathArc { x: 0.5; y: root.size - root.corner; radiusX: root.corner - 0.5; radiusY: root.corner - 0.5 }
            PathLine { x: 0.5; y: root.corner }
            PathArc { x: root.corner; y: 0.5; radiusX: root.corner - 0.5; radiusY: root.corner - 0.5 }
        }
    }
    ThemeText {
        anchors.centerIn: parent
        text: root.initials
        color: "white"
        font.pixelSize: root.size * 0.36
        font.weight: Font.Black
    }
}
