import QtQuick
import QtQuick.Shapes

// A faceted hexagonal gem, scaled to its box.
Shape {
    id: root
    property color strokeColor: "transparent"
    property real strokeWidth: 1
    property var fill: null        // a ShapeGradient, or null for fillColor
    property color fillColor: "transparent"
    property bool facets: true

    ShapePath {
        strokeColor: root.strokeColor
        strokeWidth: root.strokeWidth
        fillColor: root.fillColor
        fillGradient: root.fill
        startX: root.width * 0.5; startY: 0
        PathLine { x: root.width; y: root.height * 0.25 }
        PathLine { x: root.width; y: root.height * 0.75 }
        PathLine { x: root.width * 0.5; y: root.height }
        PathLine { x: 0; y: root.height * 0.75 }
        PathLine { x: 0; y: root.height * 0.25 }
        PathLine { x: root.width * 0.5; y: 0 }
    }
    // Facets: an inner hexagon joined to the outer corners.
    ShapePath {
        strokeColor: root.facets ? Qt.rgba(1, 1, 1, 0.22) : "transparent"
        strokeWidth: Math.max(0.5, root.strokeWidth * 0.6)
        fillColor: "transparent"
        startX: root.width * 0.5; startY: root.height * 0.22
        PathLine { x: root.width * 0.76; y: root.height * 0.36 }
        PathLine { x: root.width * 0.76; y: root.height * 0.64 }
        PathLine { x: root.width * 0.5; y: root.height * 0.78 }
        PathLine { x: root.width * 0.24; y: root.height * 0.64 }
        PathLine { x: root.width * 0.24; y: root.height * 0.36 }
        PathLine { x: root.width * 0.5; y: root.height * 0.22 }
        PathMove { x: root.width * 0.5; y: 0 }
        PathLine { x: root.width * 0.5; y: root.height * 0.22 }
        PathMove { x: root.width; y: root.height * 0.25 }
        PathLine { x: root.width * 0.76; y: root.height * 0.36 }
        PathMove { x: root.width; y: root.height * 0.75 }
        PathLine { x: root.width * 0.76; y: root.height * 0.64 }
        PathMove { x: root.width * 0.5; y: root.height }
        PathLine { x: root.width * 0.5; y: root.height * 0.78 }
        PathMove { x: 0; y: root.height * 0.75 }
        PathLine { x: root.width * 0.24; y: root.height * 0.64 }
        PathMove { x: 0; y: root.height * 0.25 }
        PathLine { x: root.width * 0.24; y: root.height * 0.36 }
    }
}
