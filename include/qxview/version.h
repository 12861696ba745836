/* The module's version: GetQxViewVersion() is (major << 8) + minor. */
#ifndef QXVIEW_VERSION_H
#define QXVIEW_VERSION_H

#define QXVIEW_VERSION_MAJOR 7
#define QXVIEW_VERSION_MINOR 1
#define QXVIEW_VERSION_TEXT "7.1"

#endif
