import QtQuick
import QtQuick.Layouts
import QuillFern.Theme

// One game of the history list. Reads the row's roles through `row`.
Item {
    id: root
    required property var row
    signal tapped()

    implicitHeight: 76

    GlassBackground {
        anchors.fill: parent
        cornerRadius: 14
        tint: area.containsMouse ? Theme.gold : "transparent"
    }

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: 10
        anchors.rightMargin: 14
        // Fixed column widths keep the columns of every row aligned; the friends take what is left.
        spacing: 12

        Rectangle {
            Layout.preferredWidth: 4
            Layout.preferredHeight: 48
            radius: 2
            color: root.row.win ? Theme.win : Theme.loss
        }
        ChampionIcon {
            name: root.row.championName
            size: 46
        }
        ColumnLayout {
            Layout.preferredWidth: 175
            Layout.minimumWidth: 175
            Layout.maximumWidth: 175
            spacing: 1
            Text {
                text: root.row.championName
                color: Theme.text
                font.family: Theme.fontFamily
                font.pixelSize: 14
                font.weight: Font.Bold
            }
            Text {
                text: root.row.resultText
                color: root.row.win ? Theme.win : Theme.loss
                font.family: Theme.fontFamily
                font.pixelSize: 11
                font.weight: Font.DemiBold
            }
            RowLayout {
                spacing: 6
                Text {
                    text: root.row.queueLabel
                    color: Theme.textSecondary
                    font.family: Theme.fontFamily
                    font.pixelSize: 11
                    elide: Text.ElideRight
                    Layout.maximumWidth: 130
                }
                ModeChip { text: root.row.categoryChip; tint: root.row.categoryColor }
            }
            Text {
                text: root.row.timeText
                color: Theme.textDim
                font.family: Theme.fontFamily
                font.pixelSize: 11
            }
        }
        ColumnLayout {
            Layout.preferredWidth: 88
            Layout.minimumWidth: 88
            Layout.maximumWidth: 88
            spacing: 2
            KDALine {
                kills: root.row.kills
                deaths: root.row.deaths
                assists: root.row.assists
                size: 15
            }
            Text {
                text: root.row.kdaText
                color: root.row.kdaColor
                font.family: Theme.fontFamily
                font.pixelSize: 11
                font.weight: Font.DemiBold
            }
        }
        ColumnLayout {
            Layout.preferredWidth: 80
            Layout.minimumWidth: 80
            Layout.maximumWidth: 80
            spacing: 2
            Text {
                text: root.row.csText
                color: Theme.textSecondary
                font.family: Theme.fontFamily
                font.pixelSize: 11
            }
            Text {
                text: root.row.damageText
                color: Theme.textDim
                font.family: Theme.fontFamily
                font.pixelSize: 11
            }
        }
        // Items with the friends beside them, or under them when the row is too narrow for both.
        Item {
            id: gear
            readonly property bool stacked: width < items.width + 12 + 180
            Layout.fillWidth: true
            Layout.minimumWidth: items.width
            Layout.fillHeight: true
            ItemRow {
                id: items
                items: root.row.items
                size: 20
                y: gear.stacked && tags.visible ? (gear.height - height - 6 - tags.height) / 2 : (gear.height - height) / 2
            }
            FriendTags {
                id: tags
                visible: root.row.friendNames.length > 0
                text: root.row.friendText
                x: gear.stacked ? 0 : items.width + 12
                y: gear.stacked ? items.y + items.height + 6 : (gear.height - height) / 2
                maximumWidth: gear.stacked ? gear.width : gear.width - items.width - 12
                hovered: area.containsMouse
            }
        }
        Symbol { name: "chevron.right"; size: 18; color: Theme.textDim }
    }

    MouseArea {
        id: area
        anchors.fill: parent
        hoverEnabled: true
        cursorShape: Qt.PointingHandCursor
        onClicked: root.tapped()
    }
}
