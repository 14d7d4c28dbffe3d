import QtQuick
import QtQuick.Layouts
import QuillFern.Theme

// One game of the history list, as a delegate of a match list: each role is a property.
Item {
    id: root
    required property string championName
    required property bool win
    required property string resultText
    required property string queueLabel
    required property string categoryChip
    required property color categoryColor
    required property string timeText
    required property int kills
    required property int deaths
    required property int assists
    required property string kdaText
    required property color kdaColor
    required property string csText
    required property string damageText
    required property var items // item ids in slot order
    required property string friendText
    required property real matchServerId
    signal tapped()

    implicitHeight: 76

    GlassBackground {
        anchors.fill: parent
        cornerRadius: Theme.rowRadius
        tint: area.containsMouse ? Theme.gold : "transparent"
    }

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: 10
        anchors.rightMargin: 14
        // Fixed column widths keep the columns of every row aligned; the friends take what is left.
        spacing: Theme.cardSpacing

        Rectangle {
            Layout.preferredWidth: 4
            Layout.preferredHeight: 48
            radius: 2
            color: root.win ? Theme.win : Theme.loss
        }
        ChampionIcon {
            name: root.championName
            size: 46
        }
        ColumnLayout {
            Layout.preferredWidth: 175
            Layout.minimumWidth: 175
            Layout.maximumWidth: 175
            spacing: 1
            ThemeText {
                role: Theme.Callout
                text: root.championName
                font.weight: Font.Bold
            }
            ThemeText {
                role: Theme.Caption
                text: root.resultText
                color: root.win ? Theme.win : Theme.loss
                font.weight: Font.DemiBold
            }
            RowLayout {
                spacing: Theme.inlineSpacing
                ThemeText {
                    role: Theme.Caption
                    text: root.queueLabel
                    color: Theme.textSecondary
                    elide: Text.ElideRight
                    Layout.maximumWidth: 130
                }
                ModeChip { text: root.categoryChip; tint: root.categoryColor }
            }
            ThemeText {
                role: Theme.Caption
                text: root.timeText
                color: Theme.textDim
            }
        }
        ColumnLayout {
            Layout.preferredWidth: 88
            Layout.minimumWidth: 88
            Layout.maximumWidth: 88
            spacing: Theme.lineSpacing
            KdaLine {
                role: Theme.Emphasis
                kills: root.kills
                deaths: root.deaths
                assists: root.assists
            }
            ThemeText {
                role: Theme.Caption
                text: root.kdaText
                color: root.kdaColor
                font.weight: Font.DemiBold
            }
        }
        ColumnLayout {
            Layout.preferredWidth: 80
            Layout.minimumWidth: 80
            Layout.maximumWidth: 80
            spacing: Theme.lineSpacing
            ThemeText {
                role: Theme.Caption
                text: root.csText
                color: Theme.textSecondary
            }
            ThemeText {
                role: Theme.Caption
                text: root.damageText
                color: Theme.textDim
            }
        }
        // Items with the friends beside them, or under them when the row is too narrow for both.
        Item {
            id: gear
            readonly property bool stacked: width < itemRow.width + 12 + 180
            Layout.fillWidth: true
            Layout.minimumWidth: itemRow.width
            Layout.fillHeight: true
            ItemRow {
                id: itemRow
                items: root.items
                size: 20
                y: gear.stacked && tags.visible ? (gear.height - height - 6 - tags.height) / 2 : (gear.height - height) / 2
            }
            FriendTags {
                id: tags
                visible: root.friendText.length > 0
                text: root.friendText
                x: gear.stacked ? 0 : itemRow.width + 12
                y: gear.stacked ? itemRow.y + itemRow.height + 6 : (gear.height - height) / 2
                maximumWidth: gear.stacked ? gear.width : gear.width - itemRow.width - 12
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
