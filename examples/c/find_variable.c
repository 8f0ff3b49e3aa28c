/*
 * The smallest host: prints where a variable or a part of it lies.
 *
 *     find_variable firmware.elf 'motor.pid[2].gain'
 */
#include <brindle/brindle.h>
#include <inttypes.h>
#include <stdio.h>

int main(int argc, char** argv) {
    brindle_reader reader = NULL;
    brindle_model model = NULL;
    brindle_place place = {.struct_size = sizeof place};
    char text[256];
    int result = 1;

    if (argc != 3) {
        fprintf(stderr, "usage: find_variable FILE PATH\n");
        return 2;
    }
    brindle_reader_create(&reader);
    if (brindle_reader_read(reader, argv[1], BRINDLE_CONTAINER_AUTO, &model) != BRINDLE_OK) {
        brindle_reader_error_text(reader, text, sizeof text, NULL);
        fprintf(stderr, "%s: %s\n", argv[1], text);
    } else if (brindle_model_resolve_path(model, argv[2], 0, &place) != BRINDLE_OK) {
        brindle_model_path_problem(model, argv[2], NULL, text, sizeof text, NULL);
        fprintf(stderr, "%s: %s\n", argv[2], text);
    } else {
        brindle_model_type_text(model, place.type, text, sizeof text, NULL);
        printf("0x%08" PRIx64 " %" PRIu64 " bytes, %s\n", place.address, place.size, text);
        result = 0;
    }
    brindle_model_destroy(model);
    brindle_reader_destroy(reader);
    return result;
}
