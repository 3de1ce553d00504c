/* Tells a position in degrees and in the UTM grid, both of WGS 84. It is ECMAScript 5, like the other scripts
   of this page. */
(function () {
  'use strict';

  var page = window.Mosaicon = window.Mosaicon || {};

  // Zone of the grid, with the exceptions of Norway and Svalbard; longitude from -180 to 180.
  function utmZone(latitude, longitude) {
    if (latitude >= 56 && latitude < 64 && longitude >= 3 && longitude < 12) { return 32; }
    if (latitude >= 72 && longitude >= 0 && longitude < 42) {
      return longitude < 9 ? 31 : longitude < 21 ? 33 : longitude < 33 ? 35 : 37;
    }
    return Math.floor((longitude + 180) / 6) % 60 + 1;
  }

  function sinh(x) { return (Math.exp(x) - Math.exp(-x)) / 2; }
  function cosh(x) { return (Math.exp(x) + Math.exp(-x)) / 2; }
  function atanh(x) { return Math.log((1 + x) / (1 - x)) / 2; }

  // Krueger's series for the transverse Mercator projection of WGS 84, to the fourth power of n, which is
  // less than a millimetre wrong in every zone. Null where the grid has no zones, near the poles.
  page.utm = function utm(latitude, longitude) {
    if (!(latitude >= -80 && latitude <= 84)) { return null; }
    longitude = ((longitude + 180) % 360 + 360) % 360 - 180;
    var zone = utmZone(latitude, longitude);
    var flattening = 1 / 298.257223563, n = flattening / (2 - flattening);
    var n2 = n * n, n3 = n2 * n, n4 = n3 * n;
    var radius = 6378137 / (1 + n) * (1 + n2 / 4 + n4 / 64);
    var series = [n / 2 - 2 / 3 * n2 + 5 / 16 * n3 + 41 / 180 * n4, 13 / 48 * n2 - 3 / 5 * n3 + 557 / 1440 * n4,
      61 / 240 * n3 - 103 / 140 * n4, 49561 / 161280 * n4];
    var excentricity = Math.sqrt(flattening * (2 - flattening));
    var sine = Math.sin(latitude * Math.PI / 180);
    var east = (longitude - (zone * 6 - 183)) * Math.PI / 180;
    var t = sinh(atanh(sine) - excentricity * atanh(excentricity * sine));
    var xi = Math.atan2(t, Math.cos(east)), eta = atanh(Math.sin(east) / Math.sqrt(1 + t * t));
    var northing = xi, easting = eta;
    series.forEach(function (factor, i) {
      var twice = 2 * (i + 1);
      northing += factor * Math.sin(twice * xi) * cosh(twice * eta);
      easting += factor * Math.cos(twice * xi) * sinh(twice * eta);
    });
    return {
      zone: zone,
      north: latitude >= 0,
      easting: 500000 + 0.9996 * radius * easting,
      northing: (latitude >= 0 ? 0 : 10000000) + 0.9996 * radius * northing
    };
  };

  // Not more decimals than a pixel of the window is worth.
  page.positionText = function positionText(place, metresPerPixel) {
    var more = metresPerPixel < 0.1 ? 2 : metresPerPixel < 1 ? 1 : 0;
    var grid = page.utm(place.lat, place.lng);
    return {
      degrees: Math.abs(place.lat).toFixed(5 + more) + '\u00b0 ' + (place.lat < 0 ? 'S' : 'N') + ', ' +
        Math.abs(place.lng).toFixed(5 + more) + '\u00b0 ' + (place.lng < 0 ? 'W' : 'E'),
      grid: !grid ? 'UTM: no zone here' : 'UTM ' + grid.zone + (grid.north ? 'N' : 'S') + ': ' +
        grid.easting.toFixed(more) + ' m E, ' + grid.northing.toFixed(more) + ' m N'
    };
  };
}());
