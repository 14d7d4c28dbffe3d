import QtQuick
import QuillFern.Theme

// What a screen shows when it has nothing to show.
Column {
    id: root
    property string icon
    property string title
    property string message

    spacing: Theme.controlSpacing
    width: 420

    Symbol {
        anchors.horizontalCenter: parent.horizontalCenter
        name: root.icon
        size: 34
        color: Theme.textDim
    }
    ThemeText {
        role: Theme.Subtitle
        anchors.horizontalCenter: parent.horizontalCenter
        text: root.title
        font.weight: Font.DemiBold
    }
    ThemeText {
        role: Theme.Body
        width: parent.width
        visible: root.message.length > 0
        text: root.message
        color: Theme.textSecondary
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.Wrap
    }
}
