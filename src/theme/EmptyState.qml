import QtQuick
import QuillFern.Theme

// What a screen shows when it has nothing to show.
Column {
    id: root
    property string icon
    property string title
    property string message

    spacing: 10
    width: 420

    Symbol {
        anchors.horizontalCenter: parent.horizontalCenter
        name: root.icon
        size: 34
        color: Theme.textDim
    }
    Text {
        anchors.horizontalCenter: parent.horizontalCenter
        text: root.title
        color: Theme.text
        font.family: Theme.fontFamily
        font.pixelSize: 17
        font.weight: Font.DemiBold
    }
    Text {
        width: parent.width
        visible: root.message.length > 0
        text: root.message
        color: Theme.textSecondary
        font.family: Theme.fontFamily
        font.pixelSize: 13
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.Wrap
    }
}
