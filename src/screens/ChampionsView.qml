import QtQuick
import QtQuick.Layouts
import QuillFern.Screens
import QuillFern.Theme

// The user's champion pool as a grid of cards, in one of three orders.
Item {
    id: root
    property var appState
    // Lets a host (or the screenshot tour) pick the order.
    property alias sort: pool.sort

    readonly property real minimumCardWidth: 280
    readonly property real spacing: 12

    ChampionsModel {
        id: pool
        appState: root.appState
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 14

        RowLayout {
            Layout.fillWidth: true
            spacing: 18
            SectionLabel {
                text: pool.poolLabel
                size: 12
            }
            Item { Layout.fillWidth: true }
            Repeater {
                model: pool.sortChoices
                Text {
                    required property var modelData
                    text: modelData.label
                    color: modelData.selected ? Theme.gold : (sortArea.containsMouse ? Theme.textSecondary : Theme.textDim)
                    font.family: Theme.fontFamily
                    font.pixelSize: 12
                    font.weight: Font.DemiBold
                    MouseArea {
                        id: sortArea
                        anchors.fill: parent
                        anchors.margins: -6
                        hoverEnabled: true
                        cursorShape: Qt.PointingHandCursor
                        onClicked: pool.sort = parent.modelData.value
                    }
                }
            }
        }

        EmptyState {
            visible: !pool.hasChampions
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: 60
            icon: "person.3"
            title: "No champion data"
            message: "Sync your games to see your pool and performance scores."
        }
        Item { visible: !pool.hasChampions; Layout.fillHeight: true }

        Item {
            visible: pool.hasChampions
            Layout.fillWidth: true
            Layout.fillHeight: true

            // Each cell carries the spacing on its right and bottom; the view is one spacing
            // wider than the screen so that the last column ends flush with the header.
            GridView {
                id: grid
                readonly property int columns: Math.max(1, Math.floor(width / (root.minimumCardWidth + root.spacing)))
                anchors.top: parent.top
                anchors.bottom: parent.bottom
                anchors.left: parent.left
                width: parent.width + root.spacing
                clip: true
                boundsBehavior: Flickable.StopAtBounds
                cellWidth: Math.floor(width / columns)
                cellHeight: 158 + root.spacing
                model: pool.cards
                reuseItems: true
                delegate: Item {
                    required property var model
                    width: grid.cellWidth
                    height: grid.cellHeight
                    ChampionCard {
                        width: parent.width - root.spacing
                        height: parent.height - root.spacing
                        card: parent.model
                    }
                }
            }
        }
    }
}
