import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import QuillFern.App
import QuillFern.Theme

// The signed-in window: sidebar on the left, toolbar and the selected section on the right.
Item {
    id: root
    property int selection: NavSection.Overview

    SidebarModel {
        id: sidebarModel
        appState: AppState
    }

    Wallpaper { anchors.fill: parent }

    RowLayout {
        anchors.fill: parent
        spacing: 0

        Sidebar {
            Layout.preferredWidth: 232
            Layout.fillHeight: true
            model: sidebarModel
            selection: root.selection
            onSelect: section => root.selection = section
        }

        ColumnLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            spacing: 0

            Toolbar {
                Layout.fillWidth: true
                Layout.leftMargin: 28
                Layout.rightMargin: 28
                Layout.topMargin: 22
                title: NavSection.title(root.selection)
                accountLabel: sidebarModel.toolbarAccount
                onOpenSearch: root.selection = NavSection.Search
            }

            ScrollView {
                id: scroller
                Layout.fillWidth: true
                Layout.fillHeight: true
                contentWidth: availableWidth
                clip: true

                Loader {
                    width: scroller.availableWidth
                    sourceComponent: sectionPlaceholder
                }
            }
        }
    }

    Component {
        id: sectionPlaceholder
        Item {
            implicitHeight: Math.max(body.implicitHeight + 56, scroller.availableHeight)
            Column {
                id: body
                anchors.horizontalCenter: parent.horizontalCenter
                anchors.top: parent.top
                anchors.topMargin: 28
                width: Math.min(parent.width - 56, 560)
                spacing: 24
                AddAccountCard {
                    width: parent.width
                    visible: root.selection === NavSection.Overview && !sidebarModel.hasAccounts
                }
                Item { width: 1; height: 60 }
                EmptyState {
                    anchors.horizontalCenter: parent.horizontalCenter
                    icon: NavSection.symbol(root.selection)
                    title: NavSection.title(root.selection)
                    message: ""
                }
            }
        }
    }
}
