/* Shows the orthophotos of a page: one on leaflet.html, all of a folder on index.html. It is ECMAScript 5, for
   old embedded browsers know nothing newer; what not every browser has is asked for before it is used. Nothing
   is fetched from another host before the visitor asks for the background map. */
(function () {
  'use strict';

  var page = window.Mosaicon;
  var TILE = 256;
  // A level of so many tiles can be shown as a whole; of a larger one only what is near its own size.
  var FEW_TILES = 1000;
  var ICONS = {
    whole: 'M4 9V4h5M15 4h5v5M20 15v5h-5M9 20H4v-5M9 9h6v6H9z',
    full: 'M4 9V4h5M20 9V4h-5M4 15v5h5M20 15v5h-5',
    here: 'M12 2v5M12 17v5M2 12h5M17 12h5M12 7a5 5 0 1 0 .01 0z',
    plus: 'M5 12h14M12 5v14',
    minus: 'M5 12h14'
  };

  var fromDisk = window.location.protocol === 'file:';
  var calm = !!window.matchMedia && window.matchMedia('(prefers-reduced-motion: reduce)').matches;
  var infos, several, map, nodes = {};
  var zooming = false, aim = null;

  // ---- What the page is given ----

  function readInfos() {
    var one = document.getElementById('map-data');
    var many = document.getElementById('maps-data');
    several = !one;
    var read = JSON.parse((one || many).textContent);
    infos = several ? read : [read];
    infos.forEach(function (info) {
      info.base = several ? encodeURIComponent(info.folder) + '/' : '';
      info.area = L.latLngBounds(info.bounds);
    });
  }

  // From a disk the file with relative links; on the web the one that knows its address. That one also works
  // from a disk, once it is published, but one with relative links leads nowhere when it is downloaded.
  function kmlAddress(info) {
    var kml = info.kml || {};
    var name = fromDisk ? kml.disk || kml.web : kml.web;
    return name ? info.base + encodeURIComponent(name) : null;
  }

  // ---- Making the page ----

  function make(tag, parent, className, text) {
    var node = document.createElement(tag);
    if (className) { node.className = className; }
    if (text) { node.textContent = text; }
    if (parent) { parent.appendChild(node); }
    return node;
  }

  function button(parent, className, text, action) {
    var node = make('button', parent, className, text);
    node.type = 'button';
    node.addEventListener('click', action);
    return node;
  }

  function tool(icon, text, action) {
    var node = button(nodes.tools, 'tool', '', action);
    var space = 'http://www.w3.org/2000/svg';
    var picture = node.appendChild(document.createElementNS(space, 'svg'));
    var path = picture.appendChild(document.createElementNS(space, 'path'));
    picture.setAttribute('viewBox', '0 0 24 24');
    picture.setAttribute('aria-hidden', 'true');
    picture.setAttribute('focusable', 'false');
    path.setAttribute('d', ICONS[icon]);
    node.title = text;
    node.setAttribute('aria-label', text);
    return node;
  }

  function link(parent, address, text, about) {
    var node = make('a', parent, 'button', text);
    node.href = address;
    if (about) { node.setAttribute('aria-label', text + ': ' + about); }
    return node;
  }

  // An opacity slider with its label and value; change gets a number from 0 to 1.
  function slider(parent, about, change) {
    var label = make('label', parent, 'slider');
    make('span', label, '', 'Opacity');
    var input = make('input', label);
    var value = make('span', label, 'value', '100\u00a0%');
    input.type = 'range';
    input.min = 0;
    input.max = 100;
    input.step = 1;
    input.value = 100;
    input.setAttribute('aria-label', about ? 'Opacity: ' + about : 'Opacity');
    function changed() {
      value.textContent = input.value + '\u00a0%';
      change(input.value / 100);
    }
    // Old browsers tell while the slider moves with the one, newer ones with the other.
    input.addEventListener('input', changed);
    input.addEventListener('change', changed);
    return input;
  }

  // One sentence for the visitor, which screen readers say too; no text takes it away.
  function say(text) {
    nodes.messageText.textContent = text;
    nodes.message.className = text ? 'message' : 'message empty';
  }

  function layOut() {
    nodes.top = document.getElementById('top');
    nodes.middle = make('main', null, 'middle');
    document.body.insertBefore(nodes.middle, nodes.top.nextSibling);
    nodes.stage = make('div', nodes.middle, 'stage');
    nodes.tools = make('div', nodes.stage, 'tools');
    nodes.map = make('div', nodes.stage, 'map');
    nodes.map.id = 'map';
    nodes.map.setAttribute('role', 'region');
    nodes.map.setAttribute('aria-label', 'Map. Arrow keys move it, plus and minus zoom.');
    nodes.message = make('div', nodes.stage, 'message empty');
    nodes.messageText = make('p', nodes.message);
    nodes.messageText.setAttribute('role', 'status');
    nodes.messageText.setAttribute('aria-live', 'polite');
    button(nodes.message, 'button', '\u00d7', function () { say(''); }).setAttribute('aria-label', 'Close');
    nodes.panel = make('section', nodes.middle, 'panel');
    nodes.panel.id = 'panel';
    nodes.panel.setAttribute('aria-label', several ? 'Maps and options' : 'Options');
    nodes.bottom = make('footer', null, 'bottom');
    document.body.insertBefore(nodes.bottom, nodes.middle.nextSibling);
    var position = make('p', nodes.bottom, 'position');
    nodes.degrees = make('span', position, '', '\u00a0');
    nodes.grid = make('span', position, '', '\u00a0');
    nodes.credits = make('div', nodes.bottom, 'credits');
  }

  function showPanel(shown) {
    nodes.panel.hidden = !shown;
    nodes.toggle.setAttribute('aria-expanded', shown ? 'true' : 'false');
    map.invalidateSize({ animate: false });
  }

  // ---- The map ----

  // Asks for the tiles that exist and for no other. Far out, the tiles of the coarsest level are many times
  // smaller than the window, so that Leaflet would count through all the places that are none; what it sees is
  // cut to what there is before it counts.
  function tileLayerClass() {
    return L.TileLayer.extend({
      getTileUrl: function (at) {
        return this.info.base + page.tileName(this.info, at.z, at.x, Math.pow(2, at.z) - 1 - at.y);
      },
      existing: function () {
        var level = this.info.levels[this._tileZoom], last = Math.pow(2, this._tileZoom) - 1;
        return level && { west: level[0], north: last - level[3], east: level[2], south: last - level[1] };
      },
      _isValidTile: function (at) {
        var range = this.existing();
        return !!range && at.x >= range.west && at.x <= range.east &&
          at.y >= range.north && at.y <= range.south;
      },
      _getTiledPixelBounds: function (centre) {
        var seen = L.TileLayer.prototype._getTiledPixelBounds.call(this, centre), range = this.existing();
        var nothing = L.bounds([[0, 0], [0, 0]]);
        if (!range) { return nothing; }
        var whole = L.bounds([range.west * TILE, range.north * TILE],
          [(range.east + 1) * TILE, (range.south + 1) * TILE]);
        if (!whole.overlaps(seen)) { return nothing; }
        return L.bounds([Math.max(seen.min.x, whole.min.x), Math.max(seen.min.y, whole.min.y)],
          [Math.min(seen.max.x, whole.max.x), Math.min(seen.max.y, whole.max.y)]);
      }
    });
  }

  function tileCount(level) {
    return level ? (level[2] - level[0] + 1) * (level[3] - level[1] + 1) : 0;
  }

  function addOrthophotos() {
    var Tiles = tileLayerClass();
    infos.forEach(function (info, i) {
      var far = tileCount(info.levels[info.coarsest]) <= FEW_TILES ? 0 : Math.max(0, info.coarsest - 3);
      info.layer = new Tiles('', {
        minZoom: far, maxZoom: map.options.maxZoom, minNativeZoom: info.coarsest, maxNativeZoom: info.finest,
        noWrap: true, zIndex: 1 + infos.length - i
      });
      info.layer.info = info;
      info.layer.on('tileerror', function () { say('Some parts of the orthophoto could not be loaded.'); });
      info.layer.addTo(map);
    });
  }

  function wholeArea() {
    var area = L.latLngBounds([]);
    infos.forEach(function (info) { area.extend(info.area); });
    return area;
  }

  // Leaflet takes no new aim while it zooms. The last one that came in the meantime has its turn afterwards.
  function fit(area) {
    if (zooming) {
      aim = area;
    } else {
      map.fitBounds(area, { padding: [16, 16], animate: !calm });
    }
  }

  function noteZooming() {
    map.on('zoomstart', function () { zooming = true; });
    map.on('zoomend', function () {
      var next = aim;
      zooming = false;
      aim = null;
      if (next) { window.setTimeout(fit, 0, next); }
    });
  }

  function makeMap() {
    function finest(info) { return info.finest; }
    map = L.map(nodes.map, {
      zoomControl: false, attributionControl: false, maxZoom: Math.max.apply(null, infos.map(finest)) + 1,
      fadeAnimation: !calm, zoomAnimation: !calm, markerZoomAnimation: !calm, inertia: !calm
    });
    L.control.scale({ imperial: false }).addTo(map);
    var attribution = L.control.attribution().addTo(map);
    nodes.credits.appendChild(attribution.getContainer());
    make('span', nodes.credits, 'maker', 'Made with Mosaicon');
  }

  // The start, once the window's layout is settled: how far one can zoom out depends on it.
  function firstView() {
    var area = wholeArea();
    var nearest = Math.min.apply(null, infos.map(function (info) { return info.coarsest; }));
    map.fitBounds(area, { padding: [16, 16], animate: false });
    map.setMinZoom(Math.max(0, Math.min(map.getZoom(), nearest) - 4));
  }

  // A place that is too small to be seen, or has too many tiles to be shown from so far, is marked.
  function markFarPlaces() {
    infos.forEach(function (info) {
      var shown = map.hasLayer(info.layer);
      var corner = map.project(info.area.getNorthEast()).subtract(map.project(info.area.getSouthWest()));
      var small = Math.max(Math.abs(corner.x), Math.abs(corner.y)) < 20;
      var marked = shown && (small || map.getZoom() < info.layer.options.minZoom);
      if (info.mark) { info.mark.remove(); }
      info.mark = null;
      if (!marked) { return; }
      info.mark = small ? L.circleMarker(info.area.getCenter(), { radius: 9, color: '#0b4f9e', weight: 3 }) :
        L.rectangle(info.area, { color: '#0b4f9e', weight: 2 });
      info.mark.bindTooltip(make('span', null, '', info.title));
      info.mark.on('click', function () { fit(info.area); });
      info.mark.addTo(map);
    });
  }

  function showPositions() {
    var pointer = null;
    function show() {
      var size = map.getSize();
      var point = pointer || size.divideBy(2);
      var place = map.containerPointToLatLng(point).wrap();
      var beside = map.containerPointToLatLng(point.add([1, 0]));
      var text = page.positionText(place, map.distance(map.containerPointToLatLng(point), beside));
      nodes.degrees.textContent = (pointer ? 'Pointer: ' : 'Centre: ') + text.degrees;
      nodes.grid.textContent = text.grid;
    }
    function moved(event) {
      pointer = event.containerPoint || null;
      show();
    }
    map.on('mousemove click', moved);
    map.on('mouseout', moved.bind(null, {}));
    // A finger that drags is no pointer; one that taps becomes one afterwards.
    nodes.map.addEventListener('touchstart', moved.bind(null, {}));
    map.on('move zoom resize', show);
    show();
  }

  // ---- Controls ----

  function addTools() {
    var nearer = tool('plus', 'Zoom in', function () { map.zoomIn(); });
    var farther = tool('minus', 'Zoom out', function () { map.zoomOut(); });
    tool('whole', several ? 'Show all maps' : 'Show the whole map', function () { fit(wholeArea()); });
    function limits() {
      // Not disabled, which would take the keyboard's focus away from under the visitor.
      nearer.setAttribute('aria-disabled', map.getZoom() >= map.getMaxZoom() ? 'true' : 'false');
      farther.setAttribute('aria-disabled', map.getZoom() <= map.getMinZoom() ? 'true' : 'false');
    }
    map.on('zoomend zoomlevelschange', limits);
    limits();
    page.addFullScreen();
    page.addOwnPosition();
  }

  function addKml(parent, info, about) {
    var address = kmlAddress(info);
    if (address) { link(parent, address, several ? 'Google Earth' : 'Open in Google Earth', about); }
  }

  function addEntry(list, info) {
    var entry = make('li', list, 'entry');
    var label = make('label', entry, 'shown');
    var box = make('input', label);
    box.type = 'checkbox';
    box.checked = true;
    make('span', label, '', info.title || info.folder);
    var opacity = slider(entry, info.title, function (value) { info.layer.setOpacity(value); });
    var actions = make('div', entry, 'actions');
    var near = button(actions, 'button', 'Zoom to', function () { fit(info.area); });
    near.setAttribute('aria-label', 'Zoom to: ' + info.title);
    link(actions, info.base + 'leaflet.html', 'Own page', info.title);
    addKml(actions, info, info.title);
    box.addEventListener('change', function () {
      if (box.checked) { info.layer.addTo(map); } else { info.layer.remove(); }
      opacity.disabled = !box.checked;
      markFarPlaces();
    });
  }

  function addPanel() {
    nodes.toggle = button(nodes.top, 'button toggle', several ? 'Maps' : 'Options', function () {
      showPanel(nodes.panel.hidden);
    });
    nodes.toggle.setAttribute('aria-controls', 'panel');
    if (several) {
      var list = make('ul', nodes.panel, 'entries');
      infos.forEach(function (info) { addEntry(list, info); });
    } else {
      slider(nodes.panel, '', function (value) { infos[0].layer.setOpacity(value); });
      addKml(nodes.panel, infos[0], '');
    }
    page.addPrint();
    page.addBackground();
    showPanel(!(window.matchMedia && window.matchMedia('(max-width: 700px)').matches));
  }

  function hasStyles() {
    function position(className) {
      var node = make('div', document.body, className), found = window.getComputedStyle(node).position;
      document.body.removeChild(node);
      return found;
    }
    return position('leaflet-pane') === 'absolute' && position('stage') === 'relative';
  }

  // Whether the page is whole. What is missing makes an error, or leaves it as it was.
  function start() {
    if (!hasStyles() || !page.tileName) { return false; }
    readInfos();
    layOut();
    makeMap();
    page.map = map;
    addPanel();
    firstView();
    addOrthophotos();
    addTools();
    markFarPlaces();
    map.on('zoomend', markFarPlaces);
    noteZooming();
    showPositions();
    return true;
  }

  page.nodes = nodes;
  page.fromDisk = fromDisk;
  page.calm = calm;
  page.make = make;
  page.button = button;
  page.tool = tool;
  page.say = say;
  page.fit = fit;
  page.area = wholeArea;
  page.ready = start();
  page.infos = infos;
}());
