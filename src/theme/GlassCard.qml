import QtQuick
import QuillFern.Theme

// A padded glass card around its content.
Item {
    id: root
    property real radius: Theme.panelRadius
    property real padding: 16
    property color tint: "transparent"
    default property alias content: holder.data

    implicitWidth: holder.childrenRect.width + 2 * padding
    implicitHeight: holder.childrenRect.height + 2 * padding

    GlassBackground {
        anchors.fill: parent
        cornerRadius: root.radius
        tint: root.tint
    }
    Item {
        id: holder
        anchors.fill: parent
        anchors.margins: root.padding
    }
}
