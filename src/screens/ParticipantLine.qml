import QtQuick
import QtQuick.Layouts
import QuillFern.Theme

// One player's line in the match detail: one row of the detail model's teams, as a map.
Rectangle {
    id: root
    required property var line

    implicitHeight: 52
    radius: Theme.controlRadius
    color: line.isMe ? Qt.rgba(Theme.gold.r, Theme.gold.g, Theme.gold.b, 0.14) : "transparent"
    border.width: line.isMe ? 1 : 0
    border.color: Qt.rgba(Theme.gold.r, Theme.gold.g, Theme.gold.b, 0.35)

    component StatColumn: Column {
        id: column
        property string value
        property string caption
        width: 44
        ThemeText {
            role: Theme.Footnote
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            text: column.value
            font.weight: Font.DemiBold
        }
        ThemeText {
            role: Theme.Micro
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            text: column.caption
            color: Theme.textDim
        }
    }

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: 14
        anchors.rightMargin: 14
        spacing: 11

        ChampionIcon { name: root.line.championName; size: 34 }
        Column {
            Layout.preferredWidth: 150
            ThemeText {
                role: Theme.Body
                width: 150
                text: root.line.championName
                font.weight: Font.DemiBold
                elide: Text.ElideRight
            }
            Row {
                spacing: Theme.smallSpacing
                ThemeText {
                    role: Theme.Caption
                    text: root.line.displayName
                    color: Theme.textSecondary
                    elide: Text.ElideRight
                    width: Math.min(implicitWidth, root.line.isFriend ? 130 : 150)
                }
                Symbol { visible: root.line.isFriend; name: "person.2.fill"; size: 11; color: Theme.teal }
            }
        }
        KdaLine {
            role: Theme.Body
            Layout.preferredWidth: 86
            kills: root.line.kills
            deaths: root.line.deaths
            assists: root.line.assists
        }
        ThemeText {
            role: Theme.Footnote
            Layout.preferredWidth: 30
            text: root.line.kdaText
            color: root.line.kdaColor
            font.weight: Font.Bold
        }
        StatColumn { value: root.line.cs; caption: "cs" }
        StatColumn { value: root.line.gold; caption: "gold" }
        StatColumn { value: root.line.vision; caption: "vis" }
        Row {
            Layout.preferredWidth: 172
            spacing: Theme.itemSpacing
            MeterBar {
                anchors.verticalCenter: parent.verticalCenter
                width: 120
                pct: root.line.damagePercent
                tint: root.line.win ? Theme.win : Theme.loss
            }
            ThemeText {
                role: Theme.Small
                anchors.verticalCenter: parent.verticalCenter
                text: root.line.damageText
                color: Theme.textDim
            }
        }
        ItemRow { items: root.line.items; size: 20 }
        Item { Layout.fillWidth: true }
    }
}
