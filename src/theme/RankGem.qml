import QtQuick
import QtQuick.Shapes
import Qt5Compat.GraphicalEffects as Effects
import QuillFern.Theme

// The tier's gem: a hexagon in the tier's two colours with a sheen and a shadow.
Item {
    id: root
    property string tier: ""
    property real size: 44
    readonly property var colors: Theme.tierGradient(tier)

    implicitWidth: size
    implicitHeight: size * 1.1

    Effects.DropShadow {
        anchors.fill: gem
        source: gem
        radius: root.size * 0.18
        samples: 17
        verticalOffset: root.size * 0.06
        color: Qt.rgba(0, 0, 0, 0.4)
    }
    HexGem {
        id: gem
        anchors.fill: parent
        strokeColor: Qt.rgba(1, 1, 1, 0.35)
        strokeWidth: Math.max(1, root.size / 40)
        fill: LinearGradient {
            x1: 0; y1: 0; x2: 0; y2: root.height
            GradientStop { position: 0; color: root.colors[0] }
            GradientStop { position: 1; color: root.colors[1] }
        }
    }
    // Inner sheen on the upper facets.
    Shape {
        anchors.fill: parent
        ShapePath {
            strokeWidth: -1
            fillGradient: LinearGradient {
                x1: 0; y1: 0; x2: 0; y2: root.height * 0.5
                GradientStop { position: 0; color: Qt.rgba(1, 1, 1, 0.45) }
                GradientStop { position: 1; color: Qt.rgba(1, 1, 1, 0) }
            }
            startX: root.width * 0.5; startY: root.height * 0.06
            PathLine { x: root.width * 0.86; y: root.height * 0.27 }
            PathLine { x: root.width * 0.5; y: root.height * 0.45 }
            PathLine { x: root.width * 0.14; y: root.height * 0.27 }
            PathLine { x: root.width * 0.5; y: root.height * 0.06 }
        }
    }
}
