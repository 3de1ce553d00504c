// What the long operations need from the dialog that runs them. All calls come from the thread of the
// user interface; PumpMessages, and every operation of the remote server, may run other handlers before
// it returns.
#ifndef MOSAICON_PUBLISH_PUBLISH_HOST_H_
#define MOSAICON_PUBLISH_PUBLISH_HOST_H_

#include <string>

class PublishHost {
 public:
  virtual ~PublishHost() = default;

  // True once the user has confirmed that the operation shall stop.
  virtual bool IsAborted() = 0;
  // True when the connection, too, is not wanted any more; IsAborted is then true as well.
  virtual bool IsLeaving() = 0;
  // Dispatches what is pending and returns.
  virtual void PumpMessages() = 0;

  virtual void SetProgressRange(int count) = 0;
  virtual void SetProgressPosition(int position) = 0;
  virtual int ProgressPosition() = 0;
  virtual void SetProgressCaption(const std::string& caption) = 0;
  // The line that stands in place of the progress bar during a removal.
  virtual void SetStatus(const std::string& text) = 0;
};

#endif  // MOSAICON_PUBLISH_PUBLISH_HOST_H_
