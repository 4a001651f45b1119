// Whether a queue can carry commandtoquillaroth's queries at all: a local
// printer queue whose backend passes the printer's replies back.

#ifndef QUILLAROTH_ADMIN_QUEUE_CHECKS_H_
#define QUILLAROTH_ADMIN_QUEUE_CHECKS_H_

#include <string>

#include "admin/scheduler.h"

// Why the filter cannot work on PRINTER's queue ("" when it can): a class,
// a remote queue, or a backend that answers no bidirectional link.
std::string WhyNoFilterHere(const PrinterAttributes& printer);

#endif  // QUILLAROTH_ADMIN_QUEUE_CHECKS_H_
