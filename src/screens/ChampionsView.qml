import QtQuick
import QtQuick.Layouts
import QuillFern.Screens
import QuillFern.Session
import QuillFern.Theme

// The user's champion pool as a grid of cards, in one of three orders.
Item {
    id: root
    required property AppState appState
    // Lets a host (or the screenshot tour) pick the order.
    property alias sort: pool.sort

    readonly property real minimumCardWidth: 280

    ChampionsModel {
        id: pool
        appState: root.appState
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: Theme.blockSpacing

        RowLayout {
            Layout.fillWidth: true
            spacing: 18
            SectionLabel {
                role: Theme.Footnote
                text: pool.poolLabel
            }
            Item { Layout.fillWidth: true }
            Repeater {
                model: pool.sortChoices
                ThemeText {
                    id: sortChoice
                    required property var modelData
                    role: Theme.Footnote
                    text: modelData.label
                    color: modelData.selected ? Theme.gold : (sortArea.containsMouse ? Theme.textSecondary : Theme.textDim)
                    font.weight: Font.DemiBold
                    MouseArea {
                        id: sortArea
                        anchors.fill: parent
                        anchors.margins: -6
                        hoverEnabled: true
                        cursorShape: Qt.PointingHandCursor
                        onClicked: pool.sort = sortChoice.modelData.value // qmllint disable unqualified
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
                readonly property int columns: Math.max(1, Math.floor(width / (root.minimumCardWidth + Theme.cardSpacing)))
                anchors.top: parent.top
                anchors.bottom: parent.bottom
                anchors.left: parent.left
                width: parent.width + Theme.cardSpacing
                clip: true
                boundsBehavior: Flickable.StopAtBounds
                cellWidth: Math.floor(width / columns)
                cellHeight: 158 + Theme.cardSpacing
                model: pool.cards
                reuseItems: true
                delegate: ChampionCard {
                    width: (GridView.view as GridView).cellWidth
                    height: (GridView.view as GridView).cellHeight
                    gap: Theme.cardSpacing
                }
            }
        }
    }
}
