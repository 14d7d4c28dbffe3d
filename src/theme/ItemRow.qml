import QtQuick

// A participant's items in slot order.
Row {
    id: root
    property var items: []
    property real size: 22
    spacing: 3
    Repeater {
        model: root.items
        ItemIcon {
            required property int modelData
            itemId: modelData
            size: root.size // qmllint disable unqualified
        }
    }
}
