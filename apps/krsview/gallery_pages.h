// The pages of the gallery.
#pragma once

class ccGalleryStage;

void cf_pagePens(ccGalleryStage&);
void cf_pagePolygons(ccGalleryStage&);
void cf_pageRectangles(ccGalleryStage&);
void cf_pageEllipses(ccGalleryStage&);
void cf_pageRings(ccGalleryStage&);
void cf_pageCurves(ccGalleryStage&);
void cf_pageOutlines(ccGalleryStage&);
void cf_pagePoints(ccGalleryStage&);
void cf_pageText(ccGalleryStage&);
void cf_pageSketches(ccGalleryStage&);
void cf_pageCoordinates(ccGalleryStage&);
void cf_pageLayers(ccGalleryStage&);
void cf_pageMaps(ccGalleryStage&);
void cf_pageColours(ccGalleryStage&);
