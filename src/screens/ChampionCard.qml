import QtQuick
import QtQuick.Layouts
import QuillFern.Screens
import QuillFern.Theme

// One champion of the pool. Reads the card's roles through `card`.
Item {
    id: root
    required property var card

    GlassBackground {
        anchors.fill: parent
        cornerRadius: 16
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 14
        spacing: 12

        RowLayout {
            Layout.fillWidth: true
            spacing: 12
            ChampionIcon {
                name: root.card.name
                size: 44
            }
            ColumnLayout {
                Layout.fillWidth: true
                spacing: 2
                Text {
                    Layout.fillWidth: true
                    text: root.card.name
                    color: Theme.text
                    font.family: Theme.fontFamily
                    font.pixelSize: 14
                    font.weight: Font.DemiBold
                    elide: Text.ElideRight
                }
                Text {
                    text: root.card.gamesText
                    color: Theme.textDim
                    font.family: Theme.fontFamily
                    font.pixelSize: 11
                }
            }
            WinRing {
                pct: root.card.winPercent
                ringColor: root.card.ringColor
                size: 46
                stroke: 4.5
            }
        }

        // Four equal slots, so the figures line up from card to card; a champion without a
        // score leaves its slot empty.
        Row {
            id: cells
            Layout.fillWidth: true
            readonly property real slot: (root.width - 28) / 4
            StatCell { value: root.card.gamesValue; caption: "Games"; tint: Theme.text }
            StatCell { value: root.card.kdaText; caption: "KDA"; tint: root.card.kdaColor }
            StatCell { value: root.card.csText; caption: "CS/M"; tint: Theme.text }
            StatCell { value: root.card.scoreText; caption: "Score"; tint: Theme.gold; shown: root.card.hasScore }
        }

        WLBar {
            Layout.fillWidth: true
            wins: root.card.wins
            losses: root.card.losses
            barHeight: 5
        }
    }

    component StatCell: Column {
        property string value
        property string caption
        property color tint
        property bool shown: true
        width: cells.slot
        spacing: 1
        Text {
            visible: parent.shown
            text: parent.value
            color: parent.tint
            font.family: Theme.fontFamily
            font.pixelSize: 16
            font.weight: Font.Bold
        }
        Text {
            visible: parent.shown
            text: parent.caption
            color: Theme.textDim
            font.family: Theme.fontFamily
            font.pixelSize: 10
            font.weight: Font.DemiBold
            font.letterSpacing: 0.4
        }
    }
}
