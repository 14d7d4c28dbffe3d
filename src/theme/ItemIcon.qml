import QtQuick
import QuillFern.Theme

// One item picture; item 0 is an empty slot.
Item {
    id: root
    property int itemId: 0
    property real size: 22

    implicitWidth: size
    implicitHeight: size

    Rectangle {
        anchors.fill: parent
        radius: root.size * 0.22
        color: Qt.rgba(1, 1, 1, root.itemId === 0 ? 0.12 : 0.06)
        border.width: 0.5
        border.color: Qt.rgba(1, 1, 1, 0.18)
        visible: root.itemId === 0 || picture.status !== Image.Ready
    }
    Image {
        id: picture
        anchors.fill: parent
        visible: root.itemId !== 0 && status === Image.Ready
        source: root.itemId !== 0 ? GameImages.item(root.itemId, GameImages.version) : ""
        asynchronous: true
        sourceSize.width: root.size * 2
        sourceSize.height: root.size * 2
    }
}
