// Error words of the mobile-AP service.
#ifndef QMI_ERROR_H
#define QMI_ERROR_H

// The service may write any 32-bit value; only the ones this system or its host platform tells apart are named.
enum qmi_error_type_v01 {
    QMI_ERROR_TYPE_MIN_ENUM_VAL_V01 = -2147483647,
    QMI_ERR_NONE_V01 = 0,
    QMI_ERR_MALFORMED_MSG_V01 = 1,
    QMI_ERR_NO_MEMORY_V01 = 2,
    QMI_ERR_INTERNAL_V01 = 3,
    QMI_ERR_ABORTED_V01 = 4,
    QMI_ERR_INVALID_HANDLE_V01 = 9,
    QMI_ERR_INVALID_ID_V01 = 14,
    QMI_ERR_NO_ENTRY_V01 = 25,
    QMI_ERR_NO_EFFECT_V01 = 26,
    QMI_ERR_BACKHAUL_DOWN_V01 = 43,
    QMI_ERR_INVALID_ARG_V01 = 48,
    QMI_ERR_EMPTY_LIST_V01 = 50,
    QMI_ERR_LIMIT_V01 = 62,
    QMI_ERR_ALREADY_THERE_V01 = 118,
    QMI_ERROR_TYPE_MAX_ENUM_VAL_V01 = 2147483647
};

#endif
