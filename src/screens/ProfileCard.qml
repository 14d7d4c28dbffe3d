import QtQuick
import QtQuick.Layouts
import QuillFern.Screens
import QuillFern.Theme

// The profile a search found: who the player is, their ranked queues and their top champions.
GlassCard {
    id: root
    required property SearchModel profile

    padding: 22

    ColumnLayout {
        width: parent.width
        spacing: Theme.sectionSpacing

        RowLayout {
            Layout.fillWidth: true
            spacing: Theme.cardSpacing
            Symbol { name: "person.crop.circle.fill"; size: 44; color: Theme.teal }
            ColumnLayout {
                Layout.fillWidth: true
                spacing: 2
                ThemeText {
                    role: Theme.Title
                    Layout.fillWidth: true
                    text: root.profile.playerName
                    color: "white"
                    font.weight: Font.Bold
                    elide: Text.ElideRight
                }
                ThemeText {
                    role: Theme.Caption
                    text: root.profile.platformText
                    color: Theme.textDim
                    font.weight: Font.Bold
                    font.letterSpacing: 1.4
                }
            }
        }

        Rectangle {
            Layout.fillWidth: true
            Layout.preferredHeight: 1
            color: Qt.rgba(1, 1, 1, 0.08)
        }

        // Ranked queues.
        SectionLabel { text: "Ranked" }
        ThemeText {
            visible: !root.profile.hasRanks
            role: Theme.Callout
            text: "Unranked"
            color: Theme.textSecondary
        }
        Repeater {
            model: root.profile.ranks
            RowLayout {
                id: rankRow
                required property string queueName
                required property string tier
                required property string rankLabel
                required property string lpText
                Layout.fillWidth: true
                spacing: Theme.cardSpacing
                RankGem { tier: rankRow.tier; size: 28 }
                ThemeText {
                    role: Theme.Callout
                    Layout.preferredWidth: 90
                    text: rankRow.queueName
                    color: Theme.textSecondary
                    elide: Text.ElideRight
                }
                ThemeText {
                    role: Theme.Callout
                    text: rankRow.rankLabel
                    color: "white"
                    font.weight: Font.DemiBold
                }
                ThemeText {
                    role: Theme.Callout
                    visible: rankRow.lpText.length > 0
                    text: rankRow.lpText
                    color: Theme.gold
                    font.weight: Font.DemiBold
                }
                Item { Layout.fillWidth: true }
            }
        }

        // Champion mastery, in the backend's order.
        SectionLabel {
            visible: root.profile.hasMastery
            Layout.topMargin: 4
            text: "Top Mastery"
        }
        ListView {
            visible: root.profile.hasMastery
            Layout.fillWidth: true
            Layout.preferredHeight: 84
            orientation: ListView.Horizontal
            spacing: Theme.cardSpacing
            clip: true
            boundsBehavior: Flickable.StopAtBounds
            model: root.profile.mastery
            delegate: Column {
                id: cell
                required property string championName
                required property string levelText
                spacing: 6
                ChampionIcon {
                    anchors.horizontalCenter: parent.horizontalCenter
                    name: cell.championName
                    size: 54
                    ring: true
                }
                ThemeText {
                    role: Theme.Footnote
                    anchors.horizontalCenter: parent.horizontalCenter
                    text: cell.levelText
                    color: Theme.goldBright
                    font.weight: Font.Bold
                }
            }
        }
    }
}
