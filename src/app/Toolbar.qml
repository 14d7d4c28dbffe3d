import QtQuick
import QtQuick.Layouts
import QuillFern.Theme

// The title of the section, a shortcut to the player search, and the account chip.
RowLayout {
    id: root
    required property string title
    required property string accountLabel
    signal openSearch()

    spacing: Theme.cardSpacing
    implicitHeight: 56

    DisplayTitle {
        text: root.title
        Layout.fillWidth: true
    }
    Item {
        Layout.preferredWidth: 180
        Layout.preferredHeight: 34
        GlassBackground { anchors.fill: parent; cornerRadius: Theme.controlRadius }
        Row {
            anchors.left: parent.left
            anchors.leftMargin: 12
            anchors.verticalCenter: parent.verticalCenter
            spacing: Theme.itemSpacing
            Symbol { name: "magnifyingglass"; size: 15; color: Theme.textDim }
            ThemeText {
                role: Theme.Footnote
                anchors.verticalCenter: parent.verticalCenter
                text: "Search summoner…"
                color: Theme.textDim
            }
        }
        MouseArea {
            anchors.fill: parent
            cursorShape: Qt.PointingHandCursor
            onClicked: root.openSearch()
        }
    }
    Item {
        Layout.preferredWidth: chipLabel.width + 52
        Layout.preferredHeight: 34
        GlassBackground { anchors.fill: parent; cornerRadius: 17 }
        Symbol {
            id: chipSymbol
            anchors.left: parent.left
            anchors.leftMargin: 12
            anchors.verticalCenter: parent.verticalCenter
            name: "person.crop.circle.fill"
            size: 16
            color: Theme.gold
        }
        ThemeText {
            id: chipLabel
            role: Theme.Footnote
            anchors.left: chipSymbol.right
            anchors.leftMargin: 6
            anchors.verticalCenter: parent.verticalCenter
            width: Math.min(implicitWidth, 170)
            text: root.accountLabel
            font.weight: Font.Medium
            elide: Text.ElideRight
        }
    }
}
