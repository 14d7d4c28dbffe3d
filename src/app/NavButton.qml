import QtQuick
import QuillFern.App
import QuillFern.Theme

// One row of the section list.
Rectangle {
    id: root
    required property int item
    required property bool isSelected
    property bool hovering: area.containsMouse
    signal action()

    implicitHeight: 34
    radius: Theme.itemRadius
    color: isSelected ? Qt.rgba(Theme.gold.r, Theme.gold.g, Theme.gold.b, 0.16)
                      : (hovering ? Qt.rgba(1, 1, 1, 0.05) : "transparent")

    Row {
        anchors.left: parent.left
        anchors.leftMargin: 10
        anchors.verticalCenter: parent.verticalCenter
        spacing: Theme.itemSpacing
        Symbol {
            width: 20
            name: NavSection.symbol(root.item)
            size: 14
            color: root.isSelected ? Theme.gold : Theme.textSecondary
        }
        ThemeText {
            role: Theme.Body
            anchors.verticalCenter: parent.verticalCenter
            text: NavSection.title(root.item)
            color: root.isSelected ? "white" : Theme.textSecondary
            font.weight: root.isSelected ? Font.Bold : Font.Medium
        }
    }
    MouseArea {
        id: area
        anchors.fill: parent
        hoverEnabled: true
        cursorShape: Qt.PointingHandCursor
        onClicked: root.action()
    }
}
