#include <diag_msg.h>

void msg_sprintf(const msg_const_type*, ...) {}
