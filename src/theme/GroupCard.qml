import QtQuick
import QuillFern.Theme

// A glass card with a titled header.
GlassCard {
    id: root
    property string title
    property string icon
    default property alias body: bodyHolder.data

    Column {
        width: parent.width
        spacing: 12
        Row {
            spacing: 8
            Symbol { name: root.icon; size: 14; color: Theme.gold }
            Text {
                text: root.title
                color: Theme.text
                font.family: Theme.fontFamily
                font.pixelSize: 14
                font.weight: Font.DemiBold
            }
        }
        Item {
            id: bodyHolder
            width: parent.width
            height: childrenRect.height
        }
    }
}
