import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import QuillFern.Screens
import QuillFern.Theme

// The landing screen: who the player is, how they play, and their newest games.
Item {
    id: root
    property var appState: null
    // The account-linking card, supplied by the window (it lives with the sign-in views).
    property Component linkCard
    signal openGame(var matchServerId)
    signal showHistory()

    OverviewModel {
        id: overview
        appState: root.appState
    }

    ScrollView {
        id: scroller
        anchors.fill: parent
        contentWidth: availableWidth
        clip: true

        ColumnLayout {
            width: scroller.availableWidth
            spacing: 16

            // Nothing of the user's yet.
            Loader {
                visible: overview.isEmpty
                active: overview.isEmpty
                Layout.alignment: Qt.AlignHCenter
                Layout.preferredWidth: Math.min(560, scroller.availableWidth)
                sourceComponent: root.linkCard
            }
            EmptyState {
                visible: overview.isEmpty
                Layout.alignment: Qt.AlignHCenter
                Layout.topMargin: 30
                icon: "square.grid.2x2"
                title: "No data yet"
                message: overview.emptyMessage
            }

            // Hero.
            GlassCard {
                visible: !overview.isEmpty
                Layout.fillWidth: true
                padding: 20
                radius: 20
                RowLayout {
                    width: parent.width
                    spacing: 18
                    SummonerAvatar {
                        size: 76
                        iconId: overview.heroIconId
                        fallbackChampion: overview.heroChampion
                        ring: true
                    }
                    ColumnLayout {
                        spacing: 10
                        Layout.fillWidth: true
                        Row {
                            spacing: 6
                            Text {
                                id: heroNameText
                                text: overview.heroName
                                color: "white"
                                font.family: Theme.fontFamily
                                font.pixelSize: 26
                                font.weight: Font.ExtraBold
                            }
                            Text {
                                anchors.baseline: heroNameText.baseline
                                text: overview.heroTag
                                color: Theme.textDim
                                font.family: Theme.fontFamily
                                font.pixelSize: 16
                                font.weight: Font.DemiBold
                            }
                        }
                        Flow {
                            Layout.fillWidth: true
                            spacing: 6
                            Repeater {
                                model: overview.pills
                                Pill {
                                    required property var modelData
                                    text: modelData.text
                                    tint: modelData.tint
                                }
                            }
                        }
                    }
                    RowLayout {
                        visible: overview.hasRank
                        spacing: 12
                        RankGem { tier: overview.rankTier; size: 46 }
                        ColumnLayout {
                            spacing: 1
                            Text {
                                text: overview.rankLabel
                                color: Theme.text
                                font.family: Theme.fontFamily
                                font.pixelSize: 16
                                font.weight: Font.Bold
                            }
                            Text {
                                text: overview.rankLpText
                                color: Theme.gold
                                font.family: Theme.fontFamily
                                font.pixelSize: 13
                                font.weight: Font.DemiBold
                            }
                            Text {
                                text: overview.rankGamesText
                                color: Theme.textDim
                                font.family: Theme.fontFamily
                                font.pixelSize: 11
                            }
                        }
                    }
                    WinRing {
                        Layout.leftMargin: 8
                        pct: overview.rankedRingPercent
                        size: 72
                        stroke: 6
                        ringColor: Theme.gold
                        sub: "RANKED"
                    }
                    WinRing {
                        pct: overview.bonusRingPercent
                        size: 72
                        stroke: 6
                        ringColor: Theme.purple
                        sub: "BONUS"
                    }
                }
            }

            // Stat cards.
            RowLayout {
                visible: !overview.isEmpty
                Layout.fillWidth: true
                spacing: 12
                Repeater {
                    model: overview.statCards
                    StatCard {
                        required property var modelData
                        Layout.fillWidth: true
                        Layout.preferredWidth: 1
                        title: modelData.title
                        value: modelData.value
                        unit: modelData.unit
                        meter: modelData.meter
                        accent: modelData.tint
                    }
                }
            }

            // Recent form beside top champions.
            RowLayout {
                visible: !overview.isEmpty
                Layout.fillWidth: true
                spacing: 12
                GlassCard {
                    Layout.fillWidth: true
                    Layout.preferredWidth: 1
                    Layout.fillHeight: true
                    // The card is as tall as the champions beside it: the figures sit at its foot.
                    implicitHeight: formColumn.implicitHeight + 2 * padding
                    ColumnLayout {
                        id: formColumn
                        width: parent.width
                        height: parent.height
                        spacing: 12
                        RowLayout {
                            Layout.fillWidth: true
                            SectionLabel { text: overview.formLabel; Layout.fillWidth: true }
                            Text {
                                text: overview.formRecord
                                color: Theme.textSecondary
                                font.family: Theme.fontFamily
                                font.pixelSize: 12
                                font.weight: Font.DemiBold
                            }
                        }
                        Row {
                            spacing: 4
                            Repeater {
                                model: overview.formResults
                                Rectangle {
                                    required property var modelData
                                    width: 7; height: 7; radius: 1.5
                                    color: modelData ? Theme.win : Theme.loss
                                }
                            }
                        }
                        Item { Layout.fillHeight: true }
                        RowLayout {
                            Layout.fillWidth: true
                            spacing: 12
                            Repeater {
                                model: [
                                    { value: overview.formAvgKda, caption: "Avg KDA", tint: "white" },
                                    { value: overview.formAvgDamage, caption: "Avg Dmg", tint: "white" },
                                    { value: overview.formWins, caption: "Wins", tint: Theme.win }
                                ]
                                ColumnLayout {
                                    required property var modelData
                                    Layout.fillWidth: true
                                    spacing: 1
                                    Text {
                                        text: parent.modelData.value
                                        color: parent.modelData.tint
                                        font.family: Theme.fontFamily
                                        font.pixelSize: 18
                                        font.weight: Font.Bold
                                    }
                                    Text {
                                        text: parent.modelData.caption
                                        color: Theme.textDim
                                        font.family: Theme.fontFamily
                                        font.pixelSize: 11
                                    }
                                }
                            }
                        }
                    }
                }
                GlassCard {
                    Layout.fillWidth: true
                    Layout.preferredWidth: 1
                    Layout.fillHeight: true
                    ColumnLayout {
                        width: parent.width
                        spacing: 8
                        SectionLabel { text: "Top Champions" }
                        Repeater {
                            model: overview.topChampions
                            RowLayout {
                                required property var modelData
                                Layout.fillWidth: true
                                spacing: 10
                                ChampionIcon { name: parent.modelData.name; size: 30 }
                                ColumnLayout {
                                    Layout.fillWidth: true
                                    spacing: 0
                                    Text {
                                        text: parent.parent.modelData.name
                                        color: Theme.text
                                        font.family: Theme.fontFamily
                                        font.pixelSize: 13
                                        font.weight: Font.DemiBold
                                    }
                                    Text {
                                        text: parent.parent.modelData.line
                                        color: Theme.textDim
                                        font.family: Theme.fontFamily
                                        font.pixelSize: 11
                                    }
                                }
                                Text {
                                    text: parent.modelData.winRateText
                                    color: parent.modelData.winRateColor
                                    font.family: Theme.fontFamily
                                    font.pixelSize: 14
                                    font.weight: Font.Bold
                                }
                            }
                        }
                    }
                }
            }

            // Newest games.
            RowLayout {
                visible: !overview.isEmpty
                Layout.fillWidth: true
                SectionLabel { text: "Recent Matches"; Layout.fillWidth: true }
                Text {
                    text: "View all"
                    color: viewAll.containsMouse ? Theme.goldBright : Theme.gold
                    font.family: Theme.fontFamily
                    font.pixelSize: 12
                    font.weight: Font.DemiBold
                    MouseArea {
                        id: viewAll
                        anchors.fill: parent
                        hoverEnabled: true
                        cursorShape: Qt.PointingHandCursor
                        onClicked: root.showHistory()
                    }
                }
            }
            Repeater {
                model: overview.isEmpty ? null : overview.recentMatches
                MatchRow {
                    required property var model
                    Layout.fillWidth: true
                    row: model
                    onTapped: root.openGame(model.matchServerId)
                }
            }
            Item { Layout.preferredHeight: 8 }
        }
    }
}
