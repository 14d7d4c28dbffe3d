import QtQuick
import QtQuick.Layouts
import QuillFern.App
import QuillFern.Theme

// The title of the section, a shortcut to the player search, and the account chip.
RowLayout {
    id: root
    property string title
    property string accountLabel
    signal openSearch()

    spacing: 12
    implicitHeight: 56

    DisplayTitle {
        text: root.title
        Layout.fillWidth: true
    }
    Item {
        Layout.preferredWidth: 180
        Layout.preferredHeight: 34
        GlassBackground { anchors.fill: parent; cornerRadius: 10 }
        Row {
            anchors.left: parent.left
            anchors.leftMargin: 12
            anchors.verticalCenter: parent.verticalCenter
            spacing: 8
            Symbol { name: "magnifyingglass"; size: 15; color: Theme.textDim }
            Text {
                anchors.verticalCenter: parent.verticalCenter
                text: "Search summoner…"
                color: Theme.textDim
                font.family: Theme.fontFamily
                font.pixelSize: 12
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
        Text {
            id: chipLabel
            anchors.left: chipSymbol.right
            anchors.leftMargin: 6
            anchors.verticalCenter: parent.verticalCenter
            width: Math.min(implicitWidth, 170)
            text: root.accountLabel
            color: Theme.text
            font.family: Theme.fontFamily
            font.pixelSize: 12
            font.weight: Font.Medium
            elide: Text.ElideRight
        }
    }
}
