// Delivers reports that the user agreed to send. Win32. Blocks; any thread.
#ifndef MOSAICON_CRASHRPT_DELIVERY_H_
#define MOSAICON_CRASHRPT_DELIVERY_H_

#include <string>

#include "crashrpt/report_store.h"

// Notes that the user agreed, to the picture or only to the rest, and delivers that to url. A picture
// without consent is deleted. Returns what went wrong, as a sentence for the user; empty when it was
// delivered. Once the agreement is noted, a failure leaves it pending.
std::string DeliverAgreed(const ReportStore& store, const std::string& name, bool withPicture,
                          const std::string& url);

// Tries to deliver everything that is pending, one after the other, and leaves out what another process
// delivers right now. Says nothing; what fails stays pending.
void DeliverPending(const ReportStore& store, const std::string& url);

#endif  // MOSAICON_CRASHRPT_DELIVERY_H_
