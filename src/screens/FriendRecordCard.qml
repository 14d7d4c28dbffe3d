import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import QuillFern.Screens
import QuillFern.Theme

// The record of the games played together with one player: totals, the season picker, the
// season's summary by category, and the games.
GlassCard {
    id: root
    required property FriendsModel record

    padding: 20

    ColumnLayout {
        width: parent.width
        spacing: Theme.blockSpacing

        // Header.
        RowLayout {
            Layout.fillWidth: true
            spacing: Theme.sectionSpacing
            PlayerAvatar {
                size: 60
                iconId: root.record.friendIconId
                initials: root.record.friendInitials
                colors: root.record.friendAvatarColors
            }
            ColumnLayout {
                Layout.fillWidth: true
                spacing: 3
                ThemeText {
                    role: Theme.Title
                    Layout.fillWidth: true
                    text: root.record.friendTitle
                    color: "white"
                    font.weight: Font.Bold
                    elide: Text.ElideRight
                }
                ThemeText {
                    role: Theme.Footnote
                    text: root.record.togetherText
                    color: Theme.textSecondary
                }
                Row {
                    spacing: Theme.inlineSpacing
                    ThemeText {
                        role: Theme.Callout
                        text: root.record.totalWinsText
                        color: Theme.win
                        font.weight: Font.Bold
                    }
                    ThemeText {
                        role: Theme.Callout
                        text: root.record.totalLossesText
                        color: Theme.loss
                        font.weight: Font.Bold
                    }
                }
            }
            WinRing {
                pct: root.record.totalWinPercent
                size: 64
                stroke: 6
            }
        }

        // The season: a label, and a menu when there is a choice.
        RowLayout {
            Layout.fillWidth: true
            Layout.topMargin: 4
            SectionLabel { text: root.record.seasonLabel }
            Item { Layout.fillWidth: true }
            Rectangle {
                visible: root.record.hasSeasonMenu
                Layout.preferredWidth: menuLabel.implicitWidth + 26
                Layout.preferredHeight: 26
                radius: Theme.itemRadius
                color: menuArea.containsMouse ? Qt.rgba(1, 1, 1, 0.1) : Qt.rgba(1, 1, 1, 0.05)
                border.width: 1
                border.color: Qt.rgba(1, 1, 1, 0.1)
                Row {
                    id: menuLabel
                    anchors.centerIn: parent
                    spacing: 5
                    ThemeText {
                        role: Theme.Footnote
                        anchors.verticalCenter: parent.verticalCenter
                        text: root.record.seasonLabel
                        font.weight: Font.DemiBold
                    }
                    Symbol {
                        anchors.verticalCenter: parent.verticalCenter
                        name: "chevron.down"
                        size: 13
                        color: Theme.textSecondary
                    }
                }
                MouseArea {
                    id: menuArea
                    anchors.fill: parent
                    hoverEnabled: true
                    cursorShape: Qt.PointingHandCursor
                    onClicked: seasonMenu.popup(parent, 0, parent.height + 4)
                }
                Menu {
                    id: seasonMenu
                    topPadding: 6
                    bottomPadding: 6
                    background: Rectangle {
                        implicitWidth: 170
                        radius: Theme.controlRadius
                        color: Theme.glassDark
                        border.width: 1
                        border.color: Qt.rgba(1, 1, 1, 0.14)
                    }
                    Instantiator {
                        model: root.record.seasonChoices
                        delegate: SeasonMenuItem {
                            required property var modelData
                            text: modelData.text
                            onTriggered: root.record.pickSeason(modelData.season) // qmllint disable unqualified
                        }
                        onObjectAdded: (index, object) => seasonMenu.insertItem(index, object)
                        onObjectRemoved: (index, object) => seasonMenu.removeItem(object)
                    }
                    MenuSeparator {
                        contentItem: Rectangle {
                            implicitHeight: 1
                            color: Qt.rgba(1, 1, 1, 0.1)
                        }
                    }
                    SeasonMenuItem {
                        text: "All seasons"
                        onTriggered: root.record.pickAllSeasons()
                    }
                }
            }
        }

        // The season's summary.
        RowLayout {
            Layout.fillWidth: true
            spacing: Theme.controlSpacing
            ThemeText {
                role: Theme.Callout
                text: root.record.shownGamesText
                color: "white"
                font.weight: Font.DemiBold
            }
            ThemeText {
                role: Theme.Callout
                text: root.record.winsText
                color: Theme.win
                font.weight: Font.DemiBold
            }
            ThemeText {
                role: Theme.Callout
                text: root.record.lossesText
                color: Theme.loss
                font.weight: Font.DemiBold
            }
            WlBar {
                Layout.preferredWidth: 120
                wins: root.record.wins
                losses: root.record.losses
            }
            ThemeText {
                role: Theme.Callout
                Layout.preferredWidth: 50
                horizontalAlignment: Text.AlignRight
                text: root.record.winPercentText
                color: root.record.winPercentColor
                font.weight: Font.Bold
            }
            Item { Layout.fillWidth: true }
        }
        Flow {
            Layout.fillWidth: true
            spacing: Theme.itemSpacing
            Repeater {
                model: root.record.categoryChips
                Rectangle {
                    id: chip
                    required property var modelData
                    width: chipRow.implicitWidth + 20
                    height: 26
                    radius: height / 2
                    color: Qt.rgba(1, 1, 1, 0.05)
                    border.width: 1
                    border.color: Qt.rgba(1, 1, 1, 0.1)
                    Row {
                        id: chipRow
                        anchors.centerIn: parent
                        spacing: 6
                        Rectangle {
                            anchors.verticalCenter: parent.verticalCenter
                            width: 6
                            height: 6
                            radius: 3
                            color: chip.modelData.color
                        }
                        ThemeText {
                            role: Theme.Footnote
                            text: chip.modelData.label
                            font.weight: Font.DemiBold
                        }
                        ThemeText {
                            role: Theme.Footnote
                            text: chip.modelData.countText
                            color: Theme.textSecondary
                        }
                        ThemeText {
                            role: Theme.Footnote
                            text: chip.modelData.percentText
                            color: Theme.textDim
                        }
                    }
                }
            }
        }

        Rectangle {
            Layout.fillWidth: true
            Layout.preferredHeight: 1
            color: Qt.rgba(1, 1, 1, 0.08)
        }

        // The games.
        Column {
            Layout.fillWidth: true
            Repeater {
                model: root.record.games
                FriendGameRow { width: parent.width }
            }
        }
        ThemeText {
            visible: root.record.canExpand
            role: Theme.Body
            text: root.record.expandText
            color: expandArea.containsMouse ? Theme.goldBright : Theme.gold
            font.weight: Font.DemiBold
            MouseArea {
                id: expandArea
                anchors.fill: parent
                anchors.margins: -6
                hoverEnabled: true
                cursorShape: Qt.PointingHandCursor
                onClicked: root.record.toggleAllGames()
            }
        }
    }
}
