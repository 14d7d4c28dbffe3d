#pragma once

#include "overlay/window_list_source.h"

// A window list a test (or the screenshot tour) sets, which counts how often it is asked.
class FakeWindowList : public WindowListSource {
public:
    std::optional<QList<Window>> windows() override {
        ++queries;
        return list;
    }

    std::optional<QList<Window>> list = QList<Window>{};
    int queries = 0;
};
