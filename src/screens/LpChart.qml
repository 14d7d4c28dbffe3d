import QtQuick
import QtQuick.Shapes
import QuillFern.Screens
import QuillFern.Theme

// The LP line of a RankModel: grid and marks, a gold gradient area, the line and its points.
// The model lays everything out in a unit square; this only scales it to the plot.
Item {
    id: root
    property RankModel chart
    readonly property real gutter: 46

    Item {
        id: plot
        x: root.gutter
        y: 6
        width: root.width - root.gutter - 10
        height: root.height - 30
        readonly property var line: root.chart ? Array.from(root.chart.chartLine, p => Qt.point(p.x * width, p.y * height)) : []
        // The highest point of the line: the area is at its strongest there.
        readonly property real lineTop: line.length > 0 ? Math.min(...line.map(p => p.y)) : 0

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
                    color: Qt.rgba(1, 1, 1, 0.07)
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
            ShapePath {
                id: area
                strokeWidth: -1
                strokeColor: "transparent"
                fillGradient: LinearGradient {
                    x1: 0; y1: plot.lineTop; x2: 0; y2: plot.height
                    GradientStop { position: 0; color: Qt.rgba(Theme.gold.r, Theme.gold.g, Theme.gold.b, 0.35) }
                    GradientStop { position: 1; color: Qt.rgba(Theme.gold.r, Theme.gold.g, Theme.gold.b, 0) }
                }
                // The polyline starts its own sub-path, so the area is drawn from the line down.
                readonly property point first: plot.line.length > 0 ? plot.line[0] : Qt.point(0, 0)
                readonly property point last: plot.line.length > 0 ? plot.line[plot.line.length - 1] : Qt.point(0, 0)
                startX: first.x
                startY: first.y
                PathPolyline { path: plot.line }
                PathLine { x: area.last.x; y: plot.height }
                PathLine { x: area.first.x; y: plot.height }
                PathLine { x: area.first.x; y: area.first.y }
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

        // Every snapshot's dot, in one item: a rank history can hold thousands.
        ChartDots {
            x: -margin
            y: -margin
            width: plot.width + 2 * margin
            height: plot.height + 2 * margin
            margin: 5
            diameter: 6
            color: Theme.gold
            points: root.chart ? root.chart.chartPoints : []
        }

        // The hovered point, drawn larger and brighter over its dot.
        Rectangle {
            id: hovered
            readonly property point at: bubble.targetIndex >= 0 && root.chart
                                        ? root.chart.chartPoints[bubble.targetIndex] : Qt.point(0, 0)
            visible: bubble.targetIndex >= 0
            x: at.x * plot.width - width / 2
            y: at.y * plot.height - height / 2
            width: 9
            height: 9
            radius: width / 2
            color: Theme.goldBright
        }

        // One hover area for all points: the nearest within 7 px of the pointer is shown.
        MouseArea {
            anchors.fill: parent
            anchors.margins: -7
            hoverEnabled: true
            acceptedButtons: Qt.NoButton
            onPositionChanged: mouse => {
                bubble.targetIndex = root.chart ? root.chart.pointAt(mouse.x - 7, mouse.y - 7, plot.width, plot.height, 7) : -1
            }
            onExited: bubble.targetIndex = -1
        }

        // The hovered point's rank and date.
        Rectangle {
            id: bubble
            property int targetIndex: -1
            visible: targetIndex >= 0
            z: 2
            width: bubbleText.implicitWidth + 16
            height: bubbleText.implicitHeight + 8
            radius: 6
            color: Theme.glassDark
            border.width: 1
            border.color: Qt.rgba(Theme.gold.r, Theme.gold.g, Theme.gold.b, 0.5)
            x: Math.max(0, Math.min(plot.width - width, hovered.x + hovered.width / 2 - width / 2))
            y: hovered.y > height + 8 ? hovered.y - height - 6 : hovered.y + hovered.height + 6
            ThemeText {
                id: bubbleText
                role: Theme.Caption
                anchors.centerIn: parent
                text: visible && root.chart ? root.chart.pointCaption(bubble.targetIndex) : ""
            }
        }
    }
}
