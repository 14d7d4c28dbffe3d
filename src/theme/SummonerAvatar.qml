import QtQuick
import Qt5Compat.GraphicalEffects
import QuillFern.Theme

// The profile icon when one is known, else the portrait of a fallback champion.
Item {
    id: root
    property int iconId: -1          // below 0: no icon known
    property string fallbackChampion: ""
    property real size: 38
    property bool ring: false

    implicitWidth: size
    implicitHeight: size

    ChampionIcon {
        anchors.fill: parent
        size: root.size
        name: root.fallbackChampion
        ring: root.ring
        visible: root.iconId < 0 || icon.status !== Image.Ready
    }

    Image {
        id: icon
        anchors.fill: parent
        source: root.iconId >= 0 ? GameImages.profileIcon(root.iconId, GameImages.version) : ""
        asynchronous: true
        sourceSize.width: root.size * 2
        sourceSize.height: root.size * 2
        visible: false
    }
    Rectangle {
        id: mask
        anchors.fill: parent
        radius: root.size * 0.28
        visible: false
    }
    DropShadow {
        anchors.fill: masked
        source: masked
        radius: 8
        samples: 17
        verticalOffset: 2
        color: Qt.rgba(0, 0, 0, 0.45)
        visible: masked.visible
    }
    OpacityMask {
        id: masked
        anchors.fill: parent
        source: icon
        maskSource: mask
        visible: icon.status === Image.Ready
    }
    Rectangle {
        anchors.fill: parent
        radius: root.size * 0.28
        color: "transparent"
        border.width: 1
        border.color: Qt.rgba(1, 1, 1, 0.16)
        visible: masked.visible
    }
}
