import QtQuick
import QuillFern.Theme

// Friends who were on the user's team.
Rectangle {
    id: root
    property var names: []

    implicitWidth: row.implicitWidth + 14
    implicitHeight: 20
    radius: height / 2
    color: Qt.rgba(Theme.teal.r, Theme.teal.g, Theme.teal.b, 0.14)

    Row {
        id: row
        anchors.centerIn: parent
        spacing: 4
        Symbol { name: "person.2.fill"; size: 10; color: Theme.teal; anchors.verticalCenter: parent.verticalCenter }
        Text {
            anchors.verticalCenter: parent.verticalCenter
            text: root.names.join(", ")
            color: Theme.teal
            font.family: Theme.fontFamily
            font.pixelSize: 10
            font.weight: Font.DemiBold
        }
    }
}
