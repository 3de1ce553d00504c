// Preloaded into vsftpd: takes its rules for logins from the folder in MOSAICON_PAM_FOLDER, because the
// server itself looks for them in /etc only, which is not ours to write into.
#include <stdlib.h>

typedef struct pam_handle pam_handle_t;
struct pam_conv;

int pam_start_confdir(const char *service, const char *user, const struct pam_conv *conversation,
                      const char *folder, pam_handle_t **handle);

int pam_start(const char *service, const char *user, const struct pam_conv *conversation,
              pam_handle_t **handle) {
  return pam_start_confdir(service, user, conversation, getenv("MOSAICON_PAM_FOLDER"), handle);
}
