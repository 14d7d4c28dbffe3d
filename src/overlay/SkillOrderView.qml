import QtQuick
import QuillFern.Overlay
import QuillFern.Theme

// The strip over the game: Q, W, E, R with their ranks as pips, the next ability to level lit.
Rectangle {
    id: root
    required property SkillStripModel model

    implicitWidth: cells.implicitWidth + 24
    implicitHeight: cells.implicitHeight + 16
    radius: 12
    color: Qt.rgba(0, 0, 0, 0.55)
    border.width: 1
    border.color: Qt.rgba(1, 1, 1, 0.12)

    Row {
        id: cells
        anchors.centerIn: parent
        spacing: 8

        Repeater {
            model: root.model
            delegate: Column {
                id: cell
                required property string key
                required property int pipCount
                required property int filledPips
                required property color accent
                required property bool isNext
                required property bool isUltimate
                spacing: 4

                Item {
                    width: 40
                    height: 40

                    // The glow: a few widening halos instead of a blur, so that it costs no
                    // offscreen pass and draws the same on every scene graph backend.
                    Repeater {
                        model: cell.isNext ? [8, 6, 4, 2] : []
                        delegate: Rectangle {
                            required property int modelData
                            x: -modelData
                            y: -modelData
                            width: 40 + 2 * modelData
                            height: 40 + 2 * modelData
                            radius: 8 + modelData
                            color: cell.accent // qmllint disable unqualified
                            opacity: 0.8 * (1 - modelData / 9) * 0.35
                        }
                    }
                    Rectangle {
                        anchors.fill: parent
                        radius: 8
                        color: cell.isNext ? Qt.rgba(cell.accent.r, cell.accent.g, cell.accent.b, 0.3)
                                           : Qt.rgba(1, 1, 1, 0.06)
                        border.width: cell.isNext ? 2.5 : 1
                        border.color: cell.isNext ? cell.accent : Qt.rgba(1, 1, 1, 0.18)
                    }
                    Text {
                        anchors.centerIn: parent
                        text: cell.key
                        font.family: Theme.fontFamily
                        font.pixelSize: 18
                        font.weight: Font.ExtraBold
                        color: cell.isNext ? "white" : Qt.rgba(1, 1, 1, 0.7)
                    }
                }

                Row {
                    anchors.horizontalCenter: parent.horizontalCenter
                    spacing: 2
                    Repeater {
                        model: cell.pipCount
                        delegate: Rectangle {
                            required property int index
                            width: cell.isUltimate ? 9 : 5 // qmllint disable unqualified
                            height: 3
                            radius: 1.5
                            color: index < cell.filledPips ? cell.accent : Qt.rgba(1, 1, 1, 0.18) // qmllint disable unqualified
                        }
                    }
                }
            }
        }
    }
}
