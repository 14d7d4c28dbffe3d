import QtQuick
import QtQuick.Controls.Basic
import QuillFern.Theme

// One choice of the season menu, drawn on the theme's dark glass.
MenuItem {
    id: root
    implicitWidth: 170
    implicitHeight: 30
    contentItem: ThemeText {
        role: Theme.Footnote
        leftPadding: 6
        verticalAlignment: Text.AlignVCenter
        text: root.text
        color: root.highlighted ? Theme.goldBright : Theme.text
        font.weight: Font.Medium
    }
    background: Rectangle {
        radius: 6
        color: root.highlighted ? Qt.rgba(Theme.gold.r, Theme.gold.g, Theme.gold.b, 0.16) : "transparent"
    }
}
