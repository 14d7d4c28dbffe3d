import QtQuick
import QtQuick.Shapes
import QuillFern.Theme

// A percentage as a ring: blue at 50 % and above, red below, unless a colour is given.
Item {
    id: root
    property real pct: 0
    property real size: 64
    property real stroke: 6
    property color ringColor: "transparent"
    property string sub: ""

    readonly property real fraction: Math.min(Math.max(pct / 100, 0.001), 1)
    readonly property color arcColor: ringColor.a > 0 ? ringColor : Theme.ringColor(pct)

    implicitWidth: size
    implicitHeight: size

    Shape {
        anchors.fill: parent
        ShapePath {
            strokeColor: Qt.rgba(1, 1, 1, 0.1)
            strokeWidth: root.stroke
            fillColor: "transparent"
            PathAngleArc {
                centerX: root.size / 2; centerY: root.size / 2
                radiusX: (root.size - root.stroke) / 2; radiusY: radiusX
                startAngle: 0; sweepAngle: 360
            }
        }
        ShapePath {
            strokeColor: root.arcColor
            strokeWidth: root.stroke
            fillColor: "transparent"
            capStyle: ShapePath.RoundCap
            PathAngleArc {
                centerX: root.size / 2; centerY: root.size / 2
                radiusX: (root.size - root.stroke) / 2; radiusY: radiusX
                startAngle: -90; sweepAngle: 360 * root.fraction
            }
        }
    }

    // The texts grow with the ring rather than following the type scale.
    Column {
        anchors.centerIn: parent
        ThemeText {
            anchors.horizontalCenter: parent.horizontalCenter
            text: Theme.ringText(root.pct)
            font.pixelSize: root.size * 0.27
            font.weight: Font.Bold
        }
        ThemeText {
            anchors.horizontalCenter: parent.horizontalCenter
            visible: root.sub.length > 0
            text: root.sub
            color: Theme.textDim
            font.pixelSize: root.size * 0.15
            font.weight: Font.DemiBold
        }
    }
}
