import QtQuick
import QuillFern.Theme

// Wins against losses as one bar: blue for wins, red for the rest.
Rectangle {
    id: root
    property int wins: 0
    property int losses: 0
    property real barHeight: 6
    readonly property int total: wins + losses

    implicitHeight: barHeight
    implicitWidth: 80
    radius: height / 2
    color: Qt.rgba(1, 1, 1, 0.08)
    clip: true

    Row {
        anchors.fill: parent
        visible: root.total > 0
        Rectangle {
            width: root.total > 0 ? root.width * root.wins / root.total : 0
            height: parent.height
            color: Theme.win
        }
        Rectangle {
            width: root.total > 0 ? root.width * root.losses / root.total : 0
            height: parent.height
            color: Theme.loss
        }
    }
}
