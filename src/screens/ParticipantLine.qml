import QtQuick
import QtQuick.Layouts
import QuillFern.Theme

// One player's line in the match detail.
Rectangle {
    id: root
    required property var line

    implicitHeight: 52
    radius: 10
    color: line.isMe ? Qt.rgba(Theme.gold.r, Theme.gold.g, Theme.gold.b, 0.14) : "transparent"
    border.width: line.isMe ? 1 : 0
    border.color: Qt.rgba(Theme.gold.r, Theme.gold.g, Theme.gold.b, 0.35)

    component StatColumn: Column {
        property string value
        property string caption
        width: 44
        Text {
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            text: parent.value
            color: Theme.text
            font.family: Theme.fontFamily
            font.pixelSize: 12
            font.weight: Font.DemiBold
        }
        Text {
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            text: parent.caption
            color: Theme.textDim
            font.family: Theme.fontFamily
            font.pixelSize: 9
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
            Text {
                width: 150
                text: root.line.championName
                color: Theme.text
                font.family: Theme.fontFamily
                font.pixelSize: 13
                font.weight: Font.DemiBold
                elide: Text.ElideRight
            }
            Row {
                spacing: 4
                Text {
                    text: root.line.displayName
                    color: Theme.textSecondary
                    font.family: Theme.fontFamily
                    font.pixelSize: 11
                    elide: Text.ElideRight
                    width: Math.min(implicitWidth, root.line.isFriend ? 130 : 150)
                }
                Symbol { visible: root.line.isFriend; name: "person.2.fill"; size: 11; color: Theme.teal }
            }
        }
        KDALine {
            Layout.preferredWidth: 86
            kills: root.line.kills
            deaths: root.line.deaths
            assists: root.line.assists
            size: 13
        }
        Text {
            Layout.preferredWidth: 30
            text: root.line.kdaText
            color: root.line.kdaColor
            font.family: Theme.fontFamily
            font.pixelSize: 12
            font.weight: Font.Bold
        }
        StatColumn { value: root.line.cs; caption: "cs" }
        StatColumn { value: root.line.gold; caption: "gold" }
        StatColumn { value: root.line.vision; caption: "vis" }
        Row {
            Layout.preferredWidth: 172
            spacing: 8
            MeterBar {
                anchors.verticalCenter: parent.verticalCenter
                width: 120
                pct: root.line.damagePercent
                tint: root.line.win ? Theme.win : Theme.loss
            }
            Text {
                anchors.verticalCenter: parent.verticalCenter
                text: root.line.damageText
                color: Theme.textDim
                font.family: Theme.fontFamily
                font.pixelSize: 10
            }
        }
        ItemRow { items: root.line.items; size: 20 }
        Item { Layout.fillWidth: true }
    }
}
