import QtQuick
import QuillFern.Theme

// Wins against losses as one bar: blue for wins, red for the rest.
Rectangle {
    id: root
    property int wins: 0
    property int losses: 0
    property real barHeight: 6
    readonly property real share: Theme.winShareOf(wins, losses)

    implicitHeight: barHeight
    implicitWidth: 80
    radius: height / 2
    color: Qt.rgba(1, 1, 1, 0.08)
    clip: true

    Row {
        anchors.fill: parent
        visible: root.wins + root.losses > 0
        Rectangle {
            width: root.width * root.share
            height: parent.height
            color: Theme.win
        }
        Rectangle {
            width: root.width - root.width * root.share
            height: parent.height
            color: Theme.loss
        }
    }
}
