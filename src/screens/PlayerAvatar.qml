import QtQuick
import QuillFern.Screens
import QuillFern.Theme

// A player's portrait: the profile icon when one is known (1 and up), else the initials tile.
Item {
    id: root
    required property int iconId // below 1: none known
    required property string initials
    required property var colors
    property real size: 40
    property real initialsSize: size

    implicitWidth: size
    implicitHeight: size

    SummonerAvatar {
        anchors.centerIn: parent
        visible: root.iconId >= 1
        size: root.size
        iconId: root.iconId >= 1 ? root.iconId : -1
    }
    InitialsAvatar {
        anchors.centerIn: parent
        visible: root.iconId < 1
        size: root.initialsSize
        initials: root.initials
        colors: root.colors
    }
}
