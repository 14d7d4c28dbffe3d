import QtQuick
import Qt5Compat.GraphicalEffects
import QuillFern.Theme

// A champion's portrait in a rounded square; a gradient with initials while it loads or fails.
Item {
    id: root
    property string name: ""
    property real size: 40
    property bool ring: false
    property color ringColor: Qt.rgba(1, 1, 1, 0.16)
    // Without a name there is no champion to hint at: a neutral tile with a person instead.
    readonly property var fallbackColors: name.length > 0 ? Theme.nameGradient(name) : Theme.tierGradient("")

    implicitWidth: size
    implicitHeight: size

    Rectangle {
        id: fallback
        anchors.fill: parent
        radius: root.size * 0.28
        visible: portrait.status !== Image.Ready
        gradient: Gradient {
            orientation: Gradient.Vertical
            GradientStop { position: 0; color: root.fallbackColors[0] }
            GradientStop { position: 1; color: root.fallbackColors[1] }
        }
        // Soft highlight from the top-left corner.
        Rectangle {
            anchors.fill: parent
            radius: parent.radius
            gradient: Gradient {
                orientation: Gradient.Vertical
                GradientStop { position: 0; color: Qt.rgba(1, 1, 1, 0.26) }
                GradientStop { position: 0.55; color: Qt.rgba(1, 1, 1, 0) }
            }
        }
        Symbol {
            anchors.centerIn: parent
            visible: root.name.length === 0
            name: "person.crop.circle.fill"
            size: root.size * 0.55
            color: Qt.rgba(1, 1, 1, 0.85)
        }
        // Initials as large as the tile allows, whatever its size.
        ThemeText {
            anchors.centerIn: parent
            visible: root.name.length > 0
            text: Theme.initialsOf(root.name)
            color: "white"
            font.pixelSize: root.size * 0.36
            font.weight: Font.Black
        }
    }

    Image {
        id: portrait
        anchors.fill: parent
        source: root.name.length > 0 ? GameImages.champion(root.name, GameImages.version) : ""
        asynchronous: true
        cache: true
        sourceSize.width: root.size * 2
        sourceSize.height: root.size * 2
        fillMode: Image.PreserveAspectCrop
        visible: false
    }
    Rectangle {
        id: mask
        anchors.fill: parent
        radius: root.size * 0.28
        visible: false
    }
    OpacityMask {
        anchors.fill: parent
        source: portrait
        maskSource: mask
        visible: portrait.status === Image.Ready
    }
    Rectangle {
        anchors.fill: parent
        radius: root.size * 0.28
        color: "transparent"
        border.width: root.ring ? 1.5 : 0
        border.color: root.ringColor
        visible: root.ring
    }
}
