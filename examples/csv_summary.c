/* Count, mean and standard deviation of the columns of a CSV file that may be larger than the memory.
 *
 *     csv_summary FILE [MEAN DEVIATION]
 *
 * The file is read in blocks of rows. The statistics task keeps count, mean and sum of squared deviations, and each call
 * joins the next block to them: with D the distance of the block's mean from the one so far,
 *   mean' = mean + D n2 / (n1 + n2),   squares' = squares1 + squares2 + D^2 n1 n2 / (n1 + n2),
 * so nothing cancels, however far the data are from 0. With MEAN and DEVIATION the last column is held against them. */
#include <math.h>
#include <orv/services.h>
#include <orv/statistics.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

enum { MOST_COLUMNS = 16, BLOCK = 32 };

/* The numbers of a line; returns how many there are. */
static int32_t parse(char* line, double* numbers) {
    int32_t count = 0;
    for (char* field = strtok(line, ","); field && count < MOST_COLUMNS; field = strtok(NULL, ","))
        numbers[count++] = strtod(field, NULL);
    return count;
}

int main(int argc, char** argv) {
    static double x[BLOCK * MOST_COLUMNS], row[MOST_COLUMNS];
    static double mean[MOST_COLUMNS], raw2[MOST_COLUMNS], variance[MOST_COLUMNS], weights[2];
    char names[4096], line[4096];
    int32_t p, n = 0, form = StorageColumns, status;
    SSTask* task = NULL;
    FILE* file = argc > 1 ? fopen(argv[1], "r") : NULL;
    if (!file || !fgets(names, sizeof names, file) || !fgets(line, sizeof line, file)) {
        fprintf(stderr, "usage: csv_summary FILE [MEAN DEVIATION], the file having a line of names\n");
        return 2;
    }
    p = parse(line, x); /* the first row of numbers */

    /* Pointers into our arrays: dimensions and data may change from call to call without another word. */
    status = __kuzdSSNewTask(&task, &p, &n, &form, NULL, NULL, NULL, 0);
    if (status == SSStatusOk) status = __kuzdSSEditTask(task, SSIdX, x);
    if (status == SSStatusOk) status = __kuzdSSEditMoments(task, mean, raw2, NULL, NULL, variance, NULL, NULL);
    if (status == SSStatusOk) status = __kuzdSSEditTask(task, SSIdAccumWeight, weights);
    for (int more = 1; more && status == SSStatusOk;) {
        /* The first row of the first block is there already. */
        for (n = weights[0] == 0; n < BLOCK && (more = fgets(line, sizeof line, file) != NULL) != 0; ++n) {
            if (parse(line, row) != p) return fprintf(stderr, "rows of different length\n"), 1;
            memcpy(x + n * p, row, (size_t)p * sizeof row[0]);
        }
        if (n > 0) status = _kuzdSSBasic(task, ORV_SS_CENTRAL_MOMENT2, BasicOnePass, orv_serv_services());
    }
    __kuzSSDeleteTask(&task);
    fclose(file);
    if (status != SSStatusOk) return fprintf(stderr, "status %d\n", (int)status), 1;

    printf("%.0f rows of %s", weights[0], names);
    for (int32_t j = 0; j < p; ++j)
        printf("column %d: mean %.10g +- %.3g, standard deviation %.10g\n", (int)j + 1, mean[j],
               sqrt(variance[j] / weights[0]), sqrt(variance[j]));
    if (argc < 4) return 0;
    printf("known:    mean %s, standard deviation %s\n", argv[2], argv[3]);
    return fabs(mean[p - 1] / strtod(argv[2], NULL) - 1) < 1e-14 &&
                   fabs(sqrt(variance[p - 1]) / strtod(argv[3], NULL) - 1) < 1e-12
               ? 0
               : 1;
}
