import QtQuick
import QtQuick.Layouts
import QuillFern.Screens
import QuillFern.Theme

// One frequent duo partner, as a delegate of the duo list: each role is a property.
Item {
    id: root
    required property string puuid
    required property string name
    required property bool hasRank
    required property string rankText
    required property var rankColors
    required property string gamesText
    required property string winsText
    required property string lossesText
    required property string lastPlayedText
    required property int wins
    required property int losses
    required property string winRateText
    required property color winRateColor
    required property int iconId
    required property string initials
    required property var avatarColors
    signal tapped()

    implicitHeight: 66

    GlassBackground {
        anchors.fill: parent
        cornerRadius: Theme.rowRadius
        tint: area.containsMouse ? Theme.gold : "transparent"
    }

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: 14
        anchors.rightMargin: 14
        spacing: Theme.cardSpacing

        PlayerAvatar {
            size: 40
            initialsSize: 38
            iconId: root.iconId
            initials: root.initials
            colors: root.avatarColors
        }
        ColumnLayout {
            spacing: 3
            RowLayout {
                spacing: Theme.itemSpacing
                ThemeText {
                    role: Theme.Callout
                    Layout.maximumWidth: 260
                    text: root.name
                    font.weight: Font.Bold
                    elide: Text.ElideRight
                }
                // The partner's rank on a capsule in their tier's colours.
                Rectangle {
                    visible: root.hasRank
                    Layout.preferredWidth: rankLabel.implicitWidth + 14
                    Layout.preferredHeight: 18
                    radius: height / 2
                    gradient: Gradient {
                        orientation: Gradient.Horizontal
                        GradientStop { position: 0; color: root.rankColors[0] }
                        GradientStop { position: 1; color: root.rankColors[1] }
                    }
                    ThemeText {
                        id: rankLabel
                        role: Theme.Small
                        anchors.centerIn: parent
                        text: root.rankText
                        color: "white"
                        font.weight: Font.Bold
                    }
                }
            }
            Row {
                spacing: 5
                ThemeText { role: Theme.Caption; text: root.gamesText; color: Theme.textSecondary }
                ThemeText { role: Theme.Caption; text: "·"; color: Theme.textFaint }
                ThemeText { role: Theme.Caption; text: root.winsText; color: Theme.win; font.weight: Font.DemiBold }
                ThemeText { role: Theme.Caption; text: root.lossesText; color: Theme.loss; font.weight: Font.DemiBold }
                ThemeText { role: Theme.Caption; visible: root.lastPlayedText.length > 0; text: "·"; color: Theme.textFaint }
                ThemeText {
                    role: Theme.Caption
                    visible: root.lastPlayedText.length > 0
                    text: root.lastPlayedText
                    color: Theme.textDim
                }
            }
        }
        Item { Layout.fillWidth: true }
        WlBar {
            Layout.preferredWidth: 110
            wins: root.wins
            losses: root.losses
        }
        ThemeText {
            role: Theme.Callout
            Layout.preferredWidth: 96
            Layout.minimumWidth: 96
            horizontalAlignment: Text.AlignRight
            text: root.winRateText
            color: root.winRateColor
            font.weight: Font.Bold
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
