#include "app/heap_relief.h"

#ifdef __GLIBC__
#include <malloc.h>
#endif

HeapRelief::HeapRelief(QObject* parent) : QObject(parent) {
    m_quiet.setSingleShot(true);
    m_quiet.setInterval(quietMs);
    connect(&m_quiet, &QTimer::timeout, this, [] {
#ifdef __GLIBC__
        malloc_trim(0);
#endif
    });
}

void HeapRelief::screenChanged() {
    m_quiet.start();
}
