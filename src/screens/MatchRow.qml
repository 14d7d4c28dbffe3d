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
        spacing: 14

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
            Layout.preferredWidth: 210
            Layout.maximumWidth: 210
            spacing: 2
            RowLayout {
                spacing: 8
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
                    font.pixelSize: 12
                    font.weight: Font.DemiBold
                }
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
            Layout.preferredWidth: 96
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
            Layout.preferredWidth: 96
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
        ItemRow {
            items: root.row.items
            size: 22
        }
        FriendTags {
            visible: root.row.friendNames.length > 0
            names: root.row.friendNames
        }
        Item { Layout.fillWidth: true }
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
