#include "points.h"

#include "messages.h"
#include "options.h"

#include <kett/KTstring.h>

bool pointsRead(const char *config, Points *curve)
{
    double rows[mostPoints][2];
    int32_t columns = 0;
    const Option key = {"points", matrixOption, NULL, 0, 0, "a matrix such as [100 3; 1000 0; 5000 -2]"};
    if (!optionsRead(config, &key, 1))
        return false;
    curve->count = 0;
    KTSTRING_GetMatrixSizeFromString(config, key.key, &curve->count, &columns);
    if (columns != 2 || curve->count < 2 || curve->count > mostPoints)
        return refuse("configuration: give points, 2 to %d rows of two numbers", mostPoints);
    KTSTRING_GetDoubleMatrixValuesFromString(config, key.key, rows[0], curve->count, 2);
    for (int32_t i = 0; i < curve->count; ++i) {
        curve->x[i] = rows[i][0];
        curve->y[i] = rows[i][1];
        if (i > 0 && curve->x[i] <= curve->x[i - 1])
            return refuse("configuration: the first numbers of the points must rise from row to row");
    }
    return true;
}
