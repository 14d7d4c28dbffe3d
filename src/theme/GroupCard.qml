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
        spacing: Theme.cardSpacing
        Row {
            spacing: Theme.itemSpacing
            Symbol { name: root.icon; size: 14; color: Theme.gold }
            ThemeText {
                role: Theme.Callout
                text: root.title
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
