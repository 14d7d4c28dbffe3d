import QtQuick
import QtQuick.Layouts
import QuillFern.Screens
import QuillFern.Session
import QuillFern.Theme

// The user's standing in one ranked queue: the newest snapshot and the LP line over time.
Item {
    id: root
    required property AppState appState
    // Lets a host (or the screenshot tour) pick the queue.
    property alias queue: rank.queue

    RankModel {
        id: rank
        appState: root.appState
    }

    Flickable {
        anchors.fill: parent
        contentWidth: width
        contentHeight: body.implicitHeight
        boundsBehavior: Flickable.StopAtBounds
        clip: true

        ColumnLayout {
            id: body
            width: parent.width
            spacing: Theme.sectionSpacing

            // The two-choice queue picker.
            Rectangle {
                Layout.preferredWidth: 260
                Layout.preferredHeight: 32
                radius: Theme.itemRadius
                color: Qt.rgba(1, 1, 1, 0.06)
                border.width: 1
                border.color: Qt.rgba(1, 1, 1, 0.1)
                Row {
                    anchors.fill: parent
                    anchors.margins: 2
                    Repeater {
                        model: rank.queueChoices
                        Rectangle {
                            id: queueChoice
                            required property var modelData
                            width: parent.width / 2
                            height: parent.height
                            radius: 7
                            color: modelData.selected ? Qt.rgba(Theme.gold.r, Theme.gold.g, Theme.gold.b, 0.22)
                                                      : "transparent"
                            border.width: modelData.selected ? 1 : 0
                            border.color: Qt.rgba(Theme.gold.r, Theme.gold.g, Theme.gold.b, 0.5)
                            ThemeText {
                                role: Theme.Footnote
                                anchors.centerIn: parent
                                text: queueChoice.modelData.label
                                color: queueChoice.modelData.selected ? Theme.goldBright : Theme.textSecondary
                                font.weight: Font.DemiBold
                            }
                            MouseArea {
                                anchors.fill: parent
                                cursorShape: Qt.PointingHandCursor
                                onClicked: rank.queue = queueChoice.modelData.value // qmllint disable unqualified
                            }
                        }
                    }
                }
            }

            // The newest snapshot of the queue.
            GlassCard {
                visible: rank.hasCurrent
                Layout.fillWidth: true
                Layout.preferredHeight: current.implicitHeight + 2 * padding
                padding: 20
                RowLayout {
                    id: current
                    width: parent.width
                    spacing: 20
                    RankGem {
                        tier: rank.currentTier
                        size: 66
                    }
                    ColumnLayout {
                        spacing: 3
                        DisplayTitle {
                            role: Theme.Display
                            text: rank.currentLabel
                        }
                        ThemeText {
                            role: Theme.Headline
                            text: rank.lpText
                            color: Theme.gold
                            font.weight: Font.DemiBold
                        }
                        ThemeText {
                            role: Theme.Body
                            text: rank.recordText
                            color: Theme.textSecondary
                        }
                        ThemeText {
                            role: Theme.Body
                            visible: rank.hasWinRate
                            text: rank.winRateText
                            color: Theme.textSecondary
                        }
                    }
                    Item { Layout.fillWidth: true }
                    WinRing {
                        visible: rank.hasWinRate
                        pct: rank.winPercent
                        size: 72
                        stroke: 6
                        sub: "WR"
                    }
                }
            }

            // LP over time.
            GlassCard {
                Layout.fillWidth: true
                Layout.preferredHeight: chartBody.implicitHeight + 2 * padding
                padding: 18
                ColumnLayout {
                    id: chartBody
                    width: parent.width
                    spacing: Theme.blockSpacing
                    SectionLabel { text: "LP over time" }
                    LpChart {
                        visible: rank.hasChart
                        Layout.fillWidth: true
                        Layout.preferredHeight: 280
                        chart: rank
                    }
                    Item {
                        visible: !rank.hasChart
                        Layout.fillWidth: true
                        Layout.preferredHeight: Math.max(120, notEnough.implicitHeight)
                        ThemeText {
                            id: notEnough
                            role: Theme.Body
                            anchors.centerIn: parent
                            width: Math.min(parent.width, 420)
                            text: "Not enough data yet — the graph fills in as you play ranked games."
                            color: Theme.textSecondary
                            horizontalAlignment: Text.AlignHCenter
                            wrapMode: Text.Wrap
                        }
                    }
                }
            }
        }
    }
}
