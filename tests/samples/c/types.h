/* Scalar types of the controller, and the names that its registers are spoken of by. */
#ifndef TYPES_H
#define TYPES_H

typedef __INT8_TYPE__ int8_t;
typedef __INT16_TYPE__ int16_t;
typedef __INT32_TYPE__ int32_t;
typedef __INT64_TYPE__ int64_t;
typedef __UINT8_TYPE__ uint8_t;
typedef __UINT16_TYPE__ uint16_t;
typedef __UINT32_TYPE__ uint32_t;
typedef __UINT64_TYPE__ uint64_t;

typedef uint16_t raw_t;
typedef raw_t adc_value_t;
typedef volatile adc_value_t adc_register_t;

typedef float ampere_t;
typedef ampere_t winding_t[3];

#endif
