/*
 * Walks the finished model of a file and prints one row for each variable, as
 * `brindle vars --sort file --format csv FILE` does.
 */
#include <brindle/brindle.h>
#include <inttypes.h>
#include <stdio.h>
#include <stdlib.h>

static void print_field(const char* text, size_t size, char behind) {
    size_t i;
    putchar('"');
    for (i = 0; i < size; ++i) {
        if (text[i] == '"') {
            putchar('"');
        }
        putchar(text[i]);
    }
    putchar('"');
    putchar(behind);
}

/* A function that returns a text of an object. */
typedef brindle_status (*text_function)(brindle_model model, brindle_id id, char* buffer,
                                        size_t capacity, size_t* length);

static void print_object_text(text_function function, brindle_model model, brindle_id id) {
    char buffer[256];
    char* text = buffer;
    size_t length = 0;
    if (function(model, id, buffer, sizeof buffer, &length) == BRINDLE_BUFFER_TOO_SMALL) {
        text = malloc(length + 1);
        if (text == NULL) {
            abort();
        }
        function(model, id, text, length + 1, NULL);
    }
    print_field(text, length, ',');
    if (text != buffer) {
        free(text);
    }
}

static void print_variable(brindle_model model, brindle_id id) {
    brindle_object variable = {.struct_size = sizeof variable};
    brindle_object unit = {.struct_size = sizeof unit};
    brindle_id unit_id = 0;
    uint64_t size = 0;

    brindle_model_object(model, id, &variable);
    brindle_model_size_of(model, id, &size);
    printf("0x%08" PRIx64 ",%" PRIu64 ",", variable.address, size);
    print_object_text(brindle_model_type_text, model, variable.type);
    print_object_text(brindle_model_qualified_name, model, id);
    brindle_model_compile_unit_of(model, id, &unit_id);
    brindle_model_object(model, unit_id, &unit);
    print_field(unit.name.data, unit.name.size, '\n');
}

static void print_variables(brindle_model model) {
    brindle_id id = 0;
    printf("address,size,type,name,compileUnit\n");
    while (brindle_model_next_of_kind(model, BRINDLE_KIND_GLOBAL, id, &id) == BRINDLE_OK) {
        print_variable(model, id);
    }
}

int main(int argc, char** argv) {
    brindle_reader reader = NULL;
    brindle_model model = NULL;
    brindle_status status;

    if (argc != 2) {
        fprintf(stderr, "usage: list_variables FILE\n");
        return 2;
    }
    if (brindle_reader_create(&reader) != BRINDLE_OK) {
        fprintf(stderr, "not enough memory\n");
        return 1;
    }
    status = brindle_reader_read(reader, argv[1], BRINDLE_CONTAINER_AUTO, &model);
    if (status != BRINDLE_OK) {
        char message[1024];
        brindle_reader_error_text(reader, message, sizeof message, NULL);
        fprintf(stderr, "%s: %s\n", argv[1], message);
    }
    /* A failed read leaves what was delivered before. */
    print_variables(model);
    brindle_model_destroy(model);
    brindle_reader_destroy(reader);
    return status == BRINDLE_OK ? 0 : 1;
}
