import QtQuick
import QtQuick.Shapes
import QuillFern.Theme

// The window background: a diagonal dusk gradient with three soft glows and a vignette.
Item {
    id: root
    clip: true

    Shape {
        anchors.fill: parent
        ShapePath {
            strokeWidth: -1
            fillGradient: LinearGradient {
                x1: 0; y1: 0; x2: root.width; y2: root.height
                GradientStop { position: 0; color: Theme.wallTop }
                GradientStop { position: 1; color: Theme.wallBottom }
            }
            startX: 0; startY: 0
            PathLine { x: root.width; y: 0 }
            PathLine { x: root.width; y: root.height }
            PathLine { x: 0; y: root.height }
            PathLine { x: 0; y: 0 }
        }
    }

    component Glow: Shape {
        id: glow
        property color tint
        property real strength
        ShapePath {
            strokeWidth: -1
            fillGradient: RadialGradient {
                centerX: glow.width / 2; centerY: glow.height / 2
                focalX: centerX; focalY: centerY
                centerRadius: Math.min(glow.width, glow.height) / 2
                GradientStop { position: 0; color: Qt.rgba(glow.tint.r, glow.tint.g, glow.tint.b, glow.strength) }
                GradientStop { position: 0.45; color: Qt.rgba(glow.tint.r, glow.tint.g, glow.tint.b, glow.strength * 0.35) }
                GradientStop { position: 1; color: Qt.rgba(glow.tint.r, glow.tint.g, glow.tint.b, 0) }
            }
            PathAngleArc {
                centerX: glow.width / 2; centerY: glow.height / 2
                radiusX: glow.width / 2; radiusY: glow.height / 2
                startAngle: 0; sweepAngle: 360
            }
        }
    }

    Glow {
        tint: Theme.gold; strength: 0.55
        width: root.width * 0.75; height: root.height * 0.8
        x: -width * 0.3; y: -height * 0.35
    }
    Glow {
        tint: Theme.teal; strength: 0.42
        width: root.width * 0.7; height: root.height * 0.8
        x: root.width - width * 0.6; y: root.height - height * 0.55
    }
    Glow {
        tint: Theme.orange; strength: 0.30
        width: root.width * 0.55; height: root.height * 0.6
        x: root.width - width * 0.55; y: -height * 0.4
    }

    // Vignette: darkens the corners so the glass on top keeps its contrast.
    Shape {
        anchors.fill: parent
        ShapePath {
            strokeWidth: -1
            fillGradient: RadialGradient {
                centerX: root.width / 2; centerY: root.height / 2
                focalX: centerX; focalY: centerY
                centerRadius: Math.sqrt(root.width * root.width + root.height * root.height) / 2
                GradientStop { position: 0.55; color: Qt.rgba(0, 0, 0, 0) }
                GradientStop { position: 1; color: Qt.rgba(0, 0, 0, 0.28) }
            }
            startX: 0; startY: 0
            PathLine { x: root.width; y: 0 }
            PathLine { x: root.width; y: root.height }
            PathLine { x: 0; y: root.height }
            PathLine { x: 0; y: 0 }
        }
    }
}
