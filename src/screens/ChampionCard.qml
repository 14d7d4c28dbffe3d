import QtQuick
import QtQuick.Layouts
import QuillFern.Theme

// One champion of the pool, as a delegate of the pool's cards: each role is a property. The card
// leaves `gap` free on its right and bottom, so that the cells of a grid space their cards.
Item {
    id: root
    required property string name
    required property string gamesText
    required property real winPercent
    required property color ringColor
    required property string gamesValue
    required property string kdaText
    required property color kdaColor
    required property string csText
    required property bool hasScore
    required property string scoreText
    required property int wins
    required property int losses
    property real gap: 0

    Item {
        id: card
        width: root.width - root.gap
        height: root.height - root.gap

        GlassBackground {
            anchors.fill: parent
            cornerRadius: Theme.cardRadius
        }

        ColumnLayout {
            anchors.fill: parent
            anchors.margins: 14
            spacing: Theme.cardSpacing

            RowLayout {
                Layout.fillWidth: true
                spacing: Theme.cardSpacing
                ChampionIcon {
                    name: root.name
                    size: 44
                }
                ColumnLayout {
                    Layout.fillWidth: true
                    spacing: Theme.lineSpacing
                    ThemeText {
                        role: Theme.Callout
                        Layout.fillWidth: true
                        text: root.name
                        font.weight: Font.DemiBold
                        elide: Text.ElideRight
                    }
                    ThemeText {
                        role: Theme.Caption
                        text: root.gamesText
                        color: Theme.textDim
                    }
                }
                WinRing {
                    pct: root.winPercent
                    ringColor: root.ringColor
                    size: 46
                    stroke: 4.5
                }
            }

            // Four equal slots, so the figures line up from card to card; a champion without a
            // score leaves its slot empty.
            Row {
                id: cells
                Layout.fillWidth: true
                readonly property real slot: (card.width - 28) / 4
                StatCell { width: cells.slot; value: root.gamesValue; caption: "Games"; tint: Theme.text }
                StatCell { width: cells.slot; value: root.kdaText; caption: "KDA"; tint: root.kdaColor }
                StatCell { width: cells.slot; value: root.csText; caption: "CS/M"; tint: Theme.text }
                StatCell { width: cells.slot; value: root.scoreText; caption: "Score"; tint: Theme.gold; shown: root.hasScore }
            }

            WlBar {
                Layout.fillWidth: true
                wins: root.wins
                losses: root.losses
                barHeight: 5
            }
        }
    }

    component StatCell: Column {
        id: cell
        property string value
        property string caption
        property color tint
        property bool shown: true
        spacing: 1
        ThemeText {
            role: Theme.Headline
            visible: cell.shown
            text: cell.value
            color: cell.tint
            font.weight: Font.Bold
        }
        ThemeText {
            role: Theme.Small
            visible: cell.shown
            text: cell.caption
            color: Theme.textDim
            font.weight: Font.DemiBold
            font.letterSpacing: 0.4
        }
    }
}
