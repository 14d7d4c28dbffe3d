import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import QuillFern.Screens
import QuillFern.Theme

// One game in full, shown as a sheet over the window.
Item {
    id: root
    property var appState: null
    property var matchServerId: 0
    signal closeRequested()
    signal timelineRequested()

    implicitWidth: 940
    implicitHeight: 720

    MatchDetailModel {
        id: detail
        appState: root.appState
        matchServerId: root.matchServerId
    }

    Wallpaper { anchors.fill: parent }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 22
        spacing: 16

        // Header.
        RowLayout {
            Layout.fillWidth: true
            spacing: 14
            ChampionIcon { name: detail.championName; size: 56; ring: true }
            ColumnLayout {
                spacing: 3
                Text {
                    text: detail.championName
                    color: Theme.text
                    font.family: Theme.fontFamily
                    font.pixelSize: 20
                    font.weight: Font.Bold
                }
                ModeChip { text: detail.categoryChip; tint: detail.categoryColor }
                Text {
                    text: detail.headerLine
                    color: Theme.textSecondary
                    font.family: Theme.fontFamily
                    font.pixelSize: 12
                }
                Text {
                    text: detail.resultText
                    color: detail.win ? Theme.win : Theme.loss
                    font.family: Theme.fontFamily
                    font.pixelSize: 13
                    font.weight: Font.Bold
                }
            }
            Item { Layout.fillWidth: true }
            Rectangle {
                Layout.preferredHeight: 30
                Layout.preferredWidth: timelineRow.implicitWidth + 24
                radius: 15
                color: Qt.rgba(Theme.gold.r, Theme.gold.g, Theme.gold.b, 0.16)
                border.width: 0.5
                border.color: Qt.rgba(Theme.gold.r, Theme.gold.g, Theme.gold.b, 0.6)
                Row {
                    id: timelineRow
                    anchors.centerIn: parent
                    spacing: 6
                    Symbol { name: "chart.xyaxis.line"; size: 14; color: Theme.goldBright }
                    Text {
                        anchors.verticalCenter: parent.verticalCenter
                        text: "Timeline"
                        color: Theme.goldBright
                        font.family: Theme.fontFamily
                        font.pixelSize: 12
                        font.weight: Font.DemiBold
                    }
                }
                MouseArea {
                    anchors.fill: parent
                    cursorShape: Qt.PointingHandCursor
                    onClicked: root.timelineRequested()
                }
            }
            Symbol {
                name: "xmark.circle.fill"
                size: 26
                color: closeArea.containsMouse ? Theme.text : Theme.textDim
                MouseArea {
                    id: closeArea
                    anchors.fill: parent
                    hoverEnabled: true
                    cursorShape: Qt.PointingHandCursor
                    onClicked: root.closeRequested()
                }
            }
        }

        ScrollView {
            Layout.fillWidth: true
            Layout.fillHeight: true
            contentWidth: availableWidth
            clip: true

            Column {
                width: parent.width
                spacing: 14
                Repeater {
                    model: detail.teams
                    GlassCard {
                        id: block
                        required property var modelData
                        width: parent.width
                        padding: 12
                        Column {
                            width: parent.width
                            spacing: 4
                            Row {
                                spacing: 10
                                leftPadding: 4
                                bottomPadding: 4
                                Text {
                                    text: block.modelData.title
                                    color: Theme.text
                                    font.family: Theme.fontFamily
                                    font.pixelSize: 14
                                    font.weight: Font.Bold
                                }
                                Text {
                                    text: block.modelData.resultText
                                    color: block.modelData.win ? Theme.win : Theme.loss
                                    font.family: Theme.fontFamily
                                    font.pixelSize: 13
                                    font.weight: Font.DemiBold
                                }
                                Text {
                                    text: block.modelData.totals
                                    color: Theme.textSecondary
                                    font.family: Theme.fontFamily
                                    font.pixelSize: 13
                                }
                            }
                            Repeater {
                                model: block.modelData.rows
                                ParticipantLine {
                                    required property var modelData
                                    width: parent.width
                                    line: modelData
                                }
                            }
                        }
                    }
                }
            }
        }
    }
}
