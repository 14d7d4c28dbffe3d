import QtQuick
import QtQuick.Layouts
import QuillFern.Screens
import QuillFern.Session
import QuillFern.Theme

// Every game of the user, newest first, with a category filter. Asks its host to open a game.
Item {
    id: root
    required property AppState appState
    signal openGame(real matchServerId)

    HistoryModel {
        id: history
        appState: root.appState
    }

    ColumnLayout {
        id: layout
        anchors.fill: parent
        spacing: Theme.blockSpacing

        RowLayout {
            Layout.fillWidth: true
            spacing: Theme.sectionSpacing
            WinRing {
                visible: history.hasGames
                pct: history.winPercent
                size: 52
                stroke: 5
            }
            ColumnLayout {
                visible: history.hasGames
                spacing: Theme.lineSpacing
                ThemeText {
                    role: Theme.Callout
                    text: history.gamesText
                    font.weight: Font.DemiBold
                }
                ThemeText {
                    role: Theme.Footnote
                    text: history.recordText
                    color: Theme.textSecondary
                }
            }
            Item { Layout.fillWidth: true }
            Flickable {
                Layout.preferredHeight: 30
                Layout.preferredWidth: Math.min(chipRow.implicitWidth, root.width * 0.7)
                contentWidth: chipRow.implicitWidth
                clip: true
                interactive: contentWidth > width
                flickableDirection: Flickable.HorizontalFlick
                Row {
                    id: chipRow
                    spacing: Theme.itemSpacing
                    Repeater {
                        model: history.chips
                        Rectangle {
                            id: chip
                            required property var modelData
                            height: 28
                            width: chipLabel.implicitWidth + 24
                            radius: height / 2
                            // The tint's own opacity counts too: "Other" is a translucent white.
                            color: modelData.selected ? Qt.rgba(modelData.tint.r, modelData.tint.g, modelData.tint.b,
                                                                modelData.tint.a * 0.9)
                                                      : Qt.rgba(1, 1, 1, 0.05)
                            border.width: modelData.selected ? 0 : 1
                            border.color: Qt.rgba(1, 1, 1, 0.12)
                            ThemeText {
                                id: chipLabel
                                role: Theme.Footnote
                                anchors.centerIn: parent
                                text: chip.modelData.label
                                color: chip.modelData.selected ? "white" : Theme.textSecondary
                                font.weight: Font.DemiBold
                            }
                            MouseArea {
                                anchors.fill: parent
                                cursorShape: Qt.PointingHandCursor
                                onClicked: history.filter = chip.modelData.value // qmllint disable unqualified
                            }
                        }
                    }
                }
            }
        }

        EmptyState {
            visible: !history.hasGames
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: 60
            icon: "list.bullet.rectangle"
            title: "No matches"
            message: "Add a Riot account and sync to backfill your history."
        }
        Item { visible: !history.hasGames; Layout.fillHeight: true }

        // Only the rows in view are ever built.
        ListView {
            id: list
            visible: history.hasGames
            Layout.fillWidth: true
            Layout.fillHeight: true
            clip: true
            spacing: Theme.itemSpacing
            model: history.rows
            reuseItems: true
            delegate: MatchRow {
                width: ListView.view.width
                onTapped: root.openGame(matchServerId) // qmllint disable unqualified
            }
        }
    }
}
