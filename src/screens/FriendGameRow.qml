import QtQuick
import QtQuick.Layouts
import QuillFern.Theme

// One game played together, as a delegate of a friend record's games: each role is a property.
Item {
    id: root
    required property real matchId
    required property string ownerChampion
    required property string friendChampion
    required property string queueLabel
    required property string dateText
    required property bool win

    implicitHeight: 48

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: 4
        anchors.rightMargin: 4
        spacing: Theme.cardSpacing

        ChampionIcon { name: root.ownerChampion; size: 34 }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 1
            ThemeText {
                role: Theme.Body
                Layout.fillWidth: true
                text: root.queueLabel
                color: "white"
                font.weight: Font.DemiBold
                elide: Text.ElideRight
            }
            ThemeText {
                role: Theme.Caption
                visible: root.dateText.length > 0
                text: root.dateText
                color: Theme.textDim
            }
        }
        Symbol { name: "person.2.fill"; size: 13; color: Theme.textFaint }
        ChampionIcon { name: root.friendChampion; size: 34 }
        Item {
            Layout.preferredWidth: 58
            Layout.preferredHeight: result.implicitHeight
            Pill {
                id: result
                anchors.right: parent.right
                text: root.win ? "WIN" : "LOSS"
                tint: root.win ? Theme.win : Theme.loss
            }
        }
    }
}
