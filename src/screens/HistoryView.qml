import QtQuick
import QtQuick.Layouts
import QuillFern.Screens
import QuillFern.Theme

// Every game of the user, newest first, with a category filter. Asks its host to open a game.
Item {
    id: root
    property var appState: null
    signal openGame(var matchServerId)


    HistoryModel {
        id: history
        appState: root.appState
    }

    ColumnLayout {
        id: layout
        anchors.fill: parent
        spacing: 14

        RowLayout {
            Layout.fillWidth: true
            spacing: 16
            WinRing {
                visible: history.hasGames
                pct: history.winPercent
                size: 52
                stroke: 5
            }
            ColumnLayout {
                visible: history.hasGames
                spacing: 2
                Text {
                    text: history.gamesText
                    color: Theme.text
                    font.family: Theme.fontFamily
                    font.pixelSize: 14
                    font.weight: Font.DemiBold
                }
                Text {
                    text: history.recordText
                    color: Theme.textSecondary
                    font.family: Theme.fontFamily
                    font.pixelSize: 12
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
                    spacing: 8
                    Repeater {
                        model: history.chips
                        Rectangle {
                            required property var modelData
                            height: 28
                            width: chipLabel.implicitWidth + 24
                            radius: 14
                            // The tint's own opacity counts too: "Other" is a translucent white.
                            color: modelData.selected ? Qt.rgba(modelData.tint.r, modelData.tint.g, modelData.tint.b,
                                                                modelData.tint.a * 0.9)
                                                      : Qt.rgba(1, 1, 1, 0.05)
                            border.width: modelData.selected ? 0 : 1
                            border.color: Qt.rgba(1, 1, 1, 0.12)
                            Text {
                                id: chipLabel
                                anchors.centerIn: parent
                                text: parent.modelData.label
                                color: parent.modelData.selected ? "white" : Theme.textSecondary
                                font.family: Theme.fontFamily
                                font.pixelSize: 12
                                font.weight: Font.DemiBold
                            }
                            MouseArea {
                                anchors.fill: parent
                                cursorShape: Qt.PointingHandCursor
                                onClicked: history.filter = parent.modelData.value
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
            spacing: 8
            model: history.rows
            reuseItems: true
            delegate: MatchRow {
                required property var model
                width: ListView.view.width
                row: model
                onTapped: root.openGame(model.matchServerId)
            }
        }
    }
}
