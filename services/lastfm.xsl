<?xml version="1.0" encoding="UTF-8"?>
<!-- SPDX-License-Identifier: GPL-3.0-or-later -->
<!--
  Answers of Last.fm: albums found by name, the albums of an artist, or the full record of one album, which is loaded
  over its hit. The text about an album is left out: its licence asks for a mention of its authors that a field of a
  collection cannot give.
-->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="xml" encoding="UTF-8"/>

  <xsl:variable name="upper" select="'ABCDEFGHIJKLMNOPQRSTUVWXYZ'"/>
  <xsl:variable name="lower" select="'abcdefghijklmnopqrstuvwxyz'"/>
  <!-- The picture of a grey star that stands where there is no cover. -->
  <xsl:variable name="placeholder" select="'2a96cbd8b46e442fc41c2b86b821562f'"/>

  <xsl:template match="/">
    <SearchResults>
      <!-- An album or artist that is not known, which comes with a status of 400 or 404. -->
      <xsl:if test="Data/error = 6">
        <xsl:attribute name="unknown">true</xsl:attribute>
      </xsl:if>
      <!-- A list of one is an object in place of an array. -->
      <xsl:variable name="lists" select="Data/results/albummatches | Data/topalbums"/>
      <xsl:variable name="albums" select="$lists/album[name] | $lists/album[not(name)]/*"/>
      <xsl:apply-templates select="$albums[name != '' and name != 'null' and name != '(null)']" mode="hit"/>
      <xsl:apply-templates select="Data/album[name]" mode="record"/>
    </SearchResults>
  </xsl:template>

  <xsl:template match="*" mode="hit">
    <!-- The middle sizes; any is better than none. -->
    <xsl:variable name="pictures" select="image/*[text != '' and text != 'null'][not(contains(text, $placeholder))]"/>
    <xsl:variable name="fitting" select="($pictures[size = 'large']/text | $pictures[size = 'medium']/text)[last()]"/>
    <Release>
      <xsl:call-template name="release-attributes"/>
      <xsl:if test="$pictures">
        <Images>
          <Image type="thumb"><xsl:value-of select="($fitting | $pictures[not($fitting)]/text)[last()]"/></Image>
        </Images>
      </xsl:if>
    </Release>
  </xsl:template>

  <xsl:template match="album" mode="record">
    <xsl:variable name="artist" select="(artist/name | artist[not(*)])[1]"/>
    <!-- Listeners write what they like; years, the artist and remarks about their shelves are no genres. -->
    <xsl:variable name="none" select="concat('|null|albums i own|favorite albums|favourite albums|seen live|',
                                             translate($artist, $upper, $lower), '|')"/>
    <xsl:variable name="tags" select="(tags | toptags)/tag//name[translate(., '0123456789s', '') != '']
                                      [not(contains($none, concat('|', translate(., $upper, $lower), '|')))]"/>
    <xsl:variable name="songs" select="tracks/track[name] | tracks/track[not(name)]/*"/>
    <Release>
      <xsl:call-template name="release-attributes"/>
      <xsl:call-template name="release-date"/>
      <xsl:if test="$tags">
        <xsl:attribute name="GENRE">
          <xsl:call-template name="capitalised">
            <xsl:with-param name="text" select="normalize-space($tags[1])"/>
          </xsl:call-template>
        </xsl:attribute>
        <Genres>
          <xsl:for-each select="$tags">
            <Genre>
              <xsl:call-template name="capitalised">
                <xsl:with-param name="text" select="normalize-space(.)"/>
              </xsl:call-template>
            </Genre>
          </xsl:for-each>
        </Genres>
      </xsl:if>
      <xsl:if test="$songs">
        <Tracks>
          <xsl:apply-templates select="$songs" mode="song">
            <xsl:with-param name="releaseArtist" select="$artist"/>
          </xsl:apply-templates>
        </Tracks>
      </xsl:if>
      <xsl:call-template name="largest-image"/>
    </Release>
  </xsl:template>

  <xsl:template match="*" mode="song">
    <xsl:param name="releaseArtist"/>
    <xsl:variable name="artist" select="(artist/name | artist[not(*)])[1]"/>
    <Track TRACK_NO="{position()}">
      <xsl:call-template name="attribute">
        <xsl:with-param name="name" select="'TRACK_ID'"/>
        <xsl:with-param name="value" select="mbid"/>
      </xsl:call-template>
      <xsl:call-template name="attribute">
        <xsl:with-param name="name" select="'TRACK_TITLE'"/>
        <xsl:with-param name="value" select="name"/>
      </xsl:call-template>
      <xsl:if test="$artist != $releaseArtist">
        <xsl:call-template name="attribute">
          <xsl:with-param name="name" select="'TRACK_ARTIST'"/>
          <xsl:with-param name="value" select="$artist"/>
        </xsl:call-template>
      </xsl:if>
      <xsl:if test="duration &gt; 0">
        <xsl:attribute name="TRACK_DURATION_SEC"><xsl:value-of select="round(duration)"/></xsl:attribute>
      </xsl:if>
    </Track>
  </xsl:template>

  <!-- An attribute, unless there is nothing to say: an empty one would empty the field. -->
  <xsl:template name="attribute">
    <xsl:param name="name"/>
    <xsl:param name="value"/>
    <xsl:if test="normalize-space($value) != '' and $value != 'null'">
      <xsl:attribute name="{$name}"><xsl:value-of select="normalize-space($value)"/></xsl:attribute>
    </xsl:if>
  </xsl:template>

  <xsl:template name="release-attributes">
    <xsl:attribute name="DATAPROVIDER">Last.fm</xsl:attribute>
    <xsl:call-template name="attribute">
      <xsl:with-param name="name" select="'RELEASE_ID'"/>
      <xsl:with-param name="value" select="mbid"/>
    </xsl:call-template>
    <xsl:call-template name="attribute">
      <xsl:with-param name="name" select="'MUSICBRAINZ_ID'"/>
      <xsl:with-param name="value" select="mbid"/>
    </xsl:call-template>
    <xsl:call-template name="attribute">
      <xsl:with-param name="name" select="'ARTIST_ID'"/>
      <xsl:with-param name="value" select="artist/mbid"/>
    </xsl:call-template>
    <!-- The artist is a text in searches and full records, and an object in the albums of an artist. -->
    <xsl:call-template name="attribute">
      <xsl:with-param name="name" select="'ARTIST'"/>
      <xsl:with-param name="value" select="(artist/name | artist[not(*)])[1]"/>
    </xsl:call-template>
    <xsl:call-template name="attribute">
      <xsl:with-param name="name" select="'RELEASE_TITLE'"/>
      <xsl:with-param name="value" select="name"/>
    </xsl:call-template>
  </xsl:template>

  <!-- Written as "    13 Sep 2005, 00:00", where it is known. -->
  <xsl:template name="release-date">
    <xsl:variable name="date" select="normalize-space(substring-before(concat(releasedate, ','), ','))"/>
    <xsl:variable name="day" select="substring-before($date, ' ')"/>
    <xsl:variable name="month" select="substring-before(substring-after($date, ' '), ' ')"/>
    <xsl:variable name="year" select="substring-after(substring-after($date, ' '), ' ')"/>
    <xsl:variable name="months" select="'JanFebMarAprMayJunJulAugSepOctNovDec'"/>
    <xsl:if test="$day &gt; 0 and $year &gt; 0 and string-length($month) = 3 and contains($months, $month)">
      <xsl:attribute name="RELEASE_DATE">
        <xsl:value-of select="concat($year, '-',
                                     format-number(string-length(substring-before($months, $month)) div 3 + 1, '00'),
                                     '-', format-number($day, '00'))"/>
      </xsl:attribute>
      <xsl:attribute name="RELEASE_YEAR"><xsl:value-of select="$year"/></xsl:attribute>
    </xsl:if>
  </xsl:template>

  <!-- Tags come in small letters, while the lists of the program and the other services write "Hip Hop". -->
  <xsl:template name="capitalised">
    <xsl:param name="text"/>
    <xsl:value-of select="translate(substring($text, 1, 1), $lower, $upper)"/>
    <xsl:choose>
      <xsl:when test="contains($text, ' ') and string-length($text) &lt; 500">
        <xsl:value-of select="concat(substring(substring-before($text, ' '), 2), ' ')"/>
        <xsl:call-template name="capitalised">
          <xsl:with-param name="text" select="substring-after($text, ' ')"/>
        </xsl:call-template>
      </xsl:when>
      <xsl:otherwise><xsl:value-of select="substring($text, 2)"/></xsl:otherwise>
    </xsl:choose>
  </xsl:template>

  <xsl:template name="largest-image">
    <xsl:variable name="pictures" select="image/*[text != '' and text != 'null'][not(contains(text, $placeholder))]"/>
    <xsl:if test="$pictures">
      <Images>
        <xsl:for-each select="$pictures">
          <!-- The place of its name in the list of sizes tells how large a picture is. -->
          <xsl:sort select="string-length(substring-before('small medium large extralarge mega', size))"
                    data-type="number" order="descending"/>
          <xsl:if test="position() = 1">
            <Image type="large"><xsl:value-of select="text"/></Image>
          </xsl:if>
        </xsl:for-each>
      </Images>
    </xsl:if>
  </xsl:template>
</xsl:stylesheet>
