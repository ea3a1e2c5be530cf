/* On platforms that aren't Windows: attaches the library when it is loaded, and detaches it when it is unloaded or the process
 * ends. */
#include "platform/module.h"
#include "plugin/attach.h"

namespace {

const struct Attachment {
  Attachment() { Library_Attach(Module_Handle()); }
  ~Attachment() { Library_Detach(); }
} attachment;

}  // namespace
