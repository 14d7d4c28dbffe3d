import QtQuick
import QtQuick.Shapes
import QuillFern.Screens
import QuillFern.Theme

// The team gold difference of a TimelineModel: grid and marks, a gold gradient area between the
// line and the zero rule, the dashed zero rule and the line. The model lays everything out in a
// unit square; this only scales it to the plot.
Item {
    id: root
    property TimelineModel chart
    readonly property real gutter: 48

    Item {
        id: plot
        x: root.gutter
        y: 6
        width: root.width - root.gutter - 10
        height: root.height - 30
        readonly property var line: root.chart ? Array.from(root.chart.chartLine, p => Qt.point(p.x * width, p.y * height)) : []
        readonly property real zero: root.chart ? root.chart.zeroY * height : 0

        Repeater {
            model: root.chart ? root.chart.yTicks : []
            Item {
                id: yTick
                required property var modelData
                y: modelData.y * plot.height
                width: plot.width // qmllint disable unqualified
                Rectangle {
                    width: parent.width
                    height: 1
                    color: Qt.rgba(1, 1, 1, 0.08)
                }
                ThemeText {
                    role: Theme.Small
                    anchors.right: parent.left
                    anchors.rightMargin: 8
                    anchors.verticalCenter: parent.top
                    text: yTick.modelData.text
                    color: Theme.textDim
                }
            }
        }
        Repeater {
            model: root.chart ? root.chart.xTicks : []
            Item {
                id: xTick
                required property var modelData
                x: modelData.x * plot.width
                height: plot.height // qmllint disable unqualified
                Rectangle {
                    width: 1
                    height: parent.height
                    color: Qt.rgba(1, 1, 1, 0.05)
                }
                ThemeText {
                    role: Theme.Small
                    anchors.top: parent.bottom
                    anchors.topMargin: 7
                    anchors.horizontalCenter: parent.left
                    text: xTick.modelData.text
                    color: Theme.textDim
                }
            }
        }

        Shape {
            anchors.fill: parent
            visible: plot.line.length > 1
            layer.enabled: true
            layer.samples: 4
            // The area from the zero rule to the line, strongest at the top of the plot.
            ShapePath {
                id: area
                strokeWidth: -1
                strokeColor: "transparent"
                fillGradient: LinearGradient {
                    x1: 0; y1: 0; x2: 0; y2: plot.height
                    GradientStop { position: 0; color: Qt.rgba(Theme.gold.r, Theme.gold.g, Theme.gold.b, 0.30) }
                    GradientStop { position: 1; color: Qt.rgba(Theme.gold.r, Theme.gold.g, Theme.gold.b, 0) }
                }
                readonly property point first: plot.line.length > 0 ? plot.line[0] : Qt.point(0, 0)
                readonly property point last: plot.line.length > 0 ? plot.line[plot.line.length - 1] : Qt.point(0, 0)
                startX: first.x
                startY: plot.zero
                PathLine { x: area.first.x; y: area.first.y }
                PathPolyline { path: plot.line }
                PathLine { x: area.last.x; y: plot.zero }
                PathLine { x: area.first.x; y: plot.zero }
            }
            // The zero rule, dashed 4 on, 4 off.
            ShapePath {
                strokeColor: Qt.rgba(1, 1, 1, 0.18)
                strokeWidth: 1
                strokeStyle: ShapePath.DashLine
                dashPattern: [4, 4]
                fillColor: "transparent"
                startX: 0
                startY: plot.zero
                PathLine { x: plot.width; y: plot.zero }
            }
            ShapePath {
                strokeColor: Theme.gold
                strokeWidth: 2.5
                fillColor: "transparent"
                joinStyle: ShapePath.RoundJoin
                capStyle: ShapePath.RoundCap
                PathPolyline { path: plot.line }
            }
        }
    }
}
