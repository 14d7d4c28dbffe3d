import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import QuillFern.Screens
import QuillFern.Session
import QuillFern.Theme

// The landing screen: who the player is, how they play, and their newest games.
Item {
    id: root
    required property AppState appState
    // The account-linking card, supplied by the window (it lives with the sign-in views).
    required property Component linkCard
    signal openGame(real matchServerId)
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
            spacing: Theme.sectionSpacing

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
                radius: Theme.heroRadius
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
                        spacing: Theme.controlSpacing
                        Layout.fillWidth: true
                        Row {
                            spacing: Theme.inlineSpacing
                            ThemeText {
                                id: heroNameText
                                role: Theme.DisplayLarge
                                text: overview.heroName
                                color: "white"
                                font.weight: Font.ExtraBold
                            }
                            ThemeText {
                                role: Theme.Headline
                                anchors.baseline: heroNameText.baseline
                                text: overview.heroTag
                                color: Theme.textDim
                                font.weight: Font.DemiBold
                            }
                        }
                        Flow {
                            Layout.fillWidth: true
                            spacing: Theme.inlineSpacing
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
                        spacing: Theme.cardSpacing
                        RankGem { tier: overview.rankTier; size: 46 }
                        ColumnLayout {
                            spacing: 1
                            ThemeText {
                                role: Theme.Headline
                                text: overview.rankLabel
                                font.weight: Font.Bold
                            }
                            ThemeText {
                                role: Theme.Body
                                text: overview.rankLpText
                                color: Theme.gold
                                font.weight: Font.DemiBold
                            }
                            ThemeText {
                                role: Theme.Caption
                                text: overview.rankGamesText
                                color: Theme.textDim
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
                spacing: Theme.cardSpacing
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
                spacing: Theme.cardSpacing
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
                        spacing: Theme.cardSpacing
                        RowLayout {
                            Layout.fillWidth: true
                            SectionLabel { text: overview.formLabel; Layout.fillWidth: true }
                            ThemeText {
                                role: Theme.Footnote
                                text: overview.formRecord
                                color: Theme.textSecondary
                                font.weight: Font.DemiBold
                            }
                        }
                        Row {
                            spacing: Theme.smallSpacing
                            Repeater {
                                model: overview.formResults
                                Rectangle {
                                    required property bool modelData // won
                                    width: 7; height: 7; radius: 1.5
                                    color: modelData ? Theme.win : Theme.loss
                                }
                            }
                        }
                        Item { Layout.fillHeight: true }
                        RowLayout {
                            Layout.fillWidth: true
                            spacing: Theme.cardSpacing
                            Repeater {
                                model: [
                                    { value: overview.formAvgKda, caption: "Avg KDA", tint: "white" },
                                    { value: overview.formAvgDamage, caption: "Avg Dmg", tint: "white" },
                                    { value: overview.formWins, caption: "Wins", tint: Theme.win }
                                ]
                                ColumnLayout {
                                    id: figure
                                    required property var modelData
                                    Layout.fillWidth: true
                                    spacing: 1
                                    ThemeText {
                                        role: Theme.Figure
                                        text: figure.modelData.value
                                        color: figure.modelData.tint
                                        font.weight: Font.Bold
                                    }
                                    ThemeText {
                                        role: Theme.Caption
                                        text: figure.modelData.caption
                                        color: Theme.textDim
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
                        spacing: Theme.itemSpacing
                        SectionLabel { text: "Top Champions" }
                        Repeater {
                            model: overview.topChampions
                            RowLayout {
                                id: champion
                                required property var modelData
                                Layout.fillWidth: true
                                spacing: Theme.controlSpacing
                                ChampionIcon { name: champion.modelData.name; size: 30 }
                                ColumnLayout {
                                    Layout.fillWidth: true
                                    spacing: 0
                                    ThemeText {
                                        role: Theme.Body
                                        text: champion.modelData.name
                                        font.weight: Font.DemiBold
                                    }
                                    ThemeText {
                                        role: Theme.Caption
                                        text: champion.modelData.line
                                        color: Theme.textDim
                                    }
                                }
                                ThemeText {
                                    role: Theme.Callout
                                    text: champion.modelData.winRateText
                                    color: champion.modelData.winRateColor
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
                ThemeText {
                    role: Theme.Footnote
                    text: "View all"
                    color: viewAll.containsMouse ? Theme.goldBright : Theme.gold
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
                    Layout.fillWidth: true
                    onTapped: root.openGame(matchServerId) // qmllint disable unqualified
                }
            }
            Item { Layout.preferredHeight: 8 }
        }
    }
}
