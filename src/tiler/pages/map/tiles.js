/* Tells the name of the file of a tile. It is ECMAScript 5, like the other scripts of this page. */
(function () {
  'use strict';

  var page = window.Mosaicon = window.Mosaicon || {};

  // How many tiles of a level each run and those before it hold.
  function endsOf(runs) {
    var total = 0;
    return runs.map(function (length) {
      total += length;
      return total;
    });
  }

  // How many of these numbers, which grow, are not larger.
  function countUpTo(numbers, number) {
    var low = 0, high = numbers.length;
    while (low < high) {
      var middle = (low + high) >> 1;
      if (numbers[middle] <= number) { low = middle + 1; } else { high = middle; }
    }
    return low;
  }

  // Tiles of a level are counted eastwards from the south-west corner, row by row. Neighbours of the same kind
  // are a run; the first run, which may be empty, is of the first kind, the next one of the second, and so on.
  function kindOf(map, z, column, row) {
    var tiles = map.tiles, range = map.levels[z], runs = tiles && tiles.runs[z];
    if (!tiles) { return 'png'; }
    if (!runs || !range) { return tiles.kinds[0]; }
    tiles.ends = tiles.ends || {};
    tiles.ends[z] = tiles.ends[z] || endsOf(runs);
    var place = (row - range[1]) * (range[2] - range[0] + 1) + column - range[0], ends = tiles.ends[z];
    return tiles.kinds[place < ends[ends.length - 1] ? countUpTo(ends, place) % 2 : 0];
  }

  // Relative to the map's folder; row counts from the south.
  page.tileName = function (map, z, column, row) {
    return z + '/' + column + '/' + row + '.' + kindOf(map, z, column, row);
  };
}());
